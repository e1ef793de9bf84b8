// The window's caption: the program, what it is doing, and how fast.
#pragma once

#include "base/types.h"

#include <chrono>
#include <string>

namespace tarn {

class Caption {
  public:
    /// Updates the caption if an update is due. Call it often.
    void update();

  private:
    using Clock = std::chrono::steady_clock;

    std::string shown;
    Clock::time_point due{};
    Clock::time_point measured{};  ///< when the speed was last measured
    u64 blanks = 0;                ///< vertical blanks at that time
    double speed = 0;              ///< vertical blanks per second
    u64 shownStep = ~u64{0};
};

}  // namespace tarn
