// The progress line of a long run.
#pragma once

#include "base/types.h"

#include <chrono>

namespace tarn {

/// A line on standard error that is overwritten in place. It is only shown on a terminal.
class ProgressLine {
  public:
    /// With `wanted` false the line is never shown. Must be called before anything is printed.
    void begin(bool wanted);

    /// Shows the numbers of driver steps and vertical blanks, at most a few times a second.
    void update(u64 steps, u64 frames);

    /// Erases the line until the next update, so that other text can be written to the terminal.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    bool active = false;
    bool shown = false;
    Clock::time_point lastTime{};
    u64 lastSteps = 0;
};

}  // namespace tarn
