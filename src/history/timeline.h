// Moving through a run: the machine at any step that it has passed, by running again from a checkpoint.
#pragma once

#include "history/checkpoints.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tarn::history {

inline constexpr std::size_t defaultBudget = 512U << 20;  ///< bytes

/// The history of a run. Positions are numbers of driver steps; the machine stands before the step of that
/// number.
class Timeline {
  public:
    /// `budget` is in bytes; see Checkpoints.
    Timeline(std::size_t budget, std::span<u8> picture) : checkpoints(budget, picture) {}

    /// Forgets what was, and has history begin with the machine as it is.
    void begin();
    bool begun() const { return !checkpoints.empty(); }

    /// To be called from time to time while the machine runs: takes a checkpoint when one is due.
    void look();

    u64 first() const { return checkpoints.firstStep(); }

    /// The furthest step that the run has reached. What the machine says before that has been heard already.
    u64 furthest() const;

    /// Puts the machine to a step from first() to furthest(), without a sound.
    void goTo(u64 step);

    /// Puts the machine behind the step in which the `number`th vertical blank came. False, with the machine
    /// where it was, when that is not in the history.
    bool goToBlank(u64 number);

    /// The position that `scan` finds last, from first() to the machine's: `scan(end)` runs the machine to
    /// `end` and returns the last position that it is looking for, if there is one. The machine is left
    /// anywhere.
    std::optional<u64> searchBack(const std::function<std::optional<u64>(u64 end)>& scan);

    std::size_t count() const { return checkpoints.count(); }

  private:
    using Clock = std::chrono::steady_clock;

    void takeTimed();

    Checkpoints checkpoints;
    Clock::time_point due{};
    u64 reached = 0;
};

}  // namespace tarn::history
