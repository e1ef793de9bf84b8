// Saving and restoring parts of the GS.
#pragma once

#include "machine/gs_state.h"
#include "recording/command.h"

#include <span>
#include <vector>

namespace tarn::recording {

/// A range of local memory, which may wrap.
struct Stretch {
    u32 first = 0;
    u32 count = 0;

    bool contains(u32 index) const { return (index - first) % localMemoryWords < count; }
};

/// The ranges of local memory that a command can change: the rows of the frame and depth buffer in `area`, or
/// everything.
std::vector<Stretch> stretchesOf(const Command& command, const Rectangle& area);

class Moment {
  public:
    /// Saves the GS's registers, and ranges of local memory.
    void take(std::span<const Stretch> stretches);

    /// Restores them.
    void restore() const;

    /// The saved value of a word in these ranges.
    u32 word(u32 index) const;

  private:
    struct Part {
        Stretch stretch;
        std::vector<u32> words;
    };
    GsState records;  ///< without local memory
    std::vector<Part> parts;
};

}  // namespace tarn::recording
