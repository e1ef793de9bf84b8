// The line that shows how far a long run has come.
#pragma once

#include "base/types.h"

#include <chrono>

namespace tarn {

/// One line on standard error that is overwritten in place. It exists only on a terminal: redirected,
/// standard error gets nothing of it.
class ProgressLine {
  public:
    /// `wanted` false: there is no line, whatever standard error is. To be called before anything is printed.
    void begin(bool wanted);

    /// Shows the counts of driver steps and vertical blanks, several times a second at most.
    void update(u64 steps, u64 frames);

    /// Takes the line away, so that other text can be written to the terminal; the next update brings it
    /// back.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    bool active = false;
    bool shown = false;
    Clock::time_point lastTime{};
    u64 lastSteps = 0;
};

}  // namespace tarn
