// The pacing of the picture to a number of vertical blanks a second.
#pragma once

#include "base/types.h"

#include <chrono>

namespace tarn {

/// Keeps the time at which the machine may go on after a vertical blank.
class FramePacer {
  public:
    /// Sleeps for a short while and returns true as long as it is too early to run on towards the next
    /// vertical blank; otherwise returns false at once. `blanks` is how many there have been, `rate` how many
    /// a second may be shown (0: any number).
    bool holds(u64 blanks, u32 rate);

    /// Sleeps for a short while if there is a rate to keep: there is nothing to run.
    void rest(u32 rate) const;

  private:
    using Clock = std::chrono::steady_clock;

    u64 lastBlank = 0;
    Clock::time_point due;
};

}  // namespace tarn
