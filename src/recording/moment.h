// The GS at a moment, to go back to.
#pragma once

#include "machine/gs_state.h"
#include "recording/command.h"

#include <span>
#include <vector>

namespace tarn::recording {

/// A stretch of local memory, which may go on at its beginning.
struct Stretch {
    u32 first = 0;
    u32 count = 0;

    bool contains(u32 index) const { return (index - first) % localMemoryWords < count; }
};

/// The stretches of local memory that a command may change: the rows of frame and depth buffer that `area`
/// goes over, or all of it.
std::vector<Stretch> stretchesOf(const Command& command, const Rectangle& area);

class Moment {
  public:
    /// Keeps the registers of the GS as they are, and stretches of local memory.
    void take(std::span<const Stretch> stretches);

    /// Puts that back.
    void restore() const;

    /// A word of the stretches as it was.
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
