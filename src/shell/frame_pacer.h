// Frame pacing: a maximum number of vertical blanks per second.
#pragma once

#include "base/types.h"

#include <chrono>

namespace tarn {

/// Decides when the machine may continue after a vertical blank.
class FramePacer {
  public:
    /// If it is too early to run towards the next vertical blank, sleeps for a short time and returns true;
    /// otherwise returns false at once. `blanks` is the number of blanks so far, `rate` the maximum per
    /// second (0: no limit).
    bool holds(u64 blanks, u32 rate);

    /// Sleeps for a short time if there is a rate limit. For when there is nothing to run.
    void rest(u32 rate) const;

  private:
    using Clock = std::chrono::steady_clock;

    u64 lastBlank = 0;
    Clock::time_point due;
};

}  // namespace tarn
