// Moving the machine to any step of its run, by running again from a checkpoint.
#pragma once

#include "history/checkpoints.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tarn::history {

inline constexpr std::size_t defaultBudget = 512U << 20;  ///< bytes

/// The history of a run. A position is a number of driver steps made.
class Timeline {
  public:
    /// `budget` is in bytes; see Checkpoints.
    Timeline(std::size_t budget, std::span<u8> picture) : checkpoints(budget, picture) {}

    /// Starts a new history at the machine's current state.
    void begin();
    bool begun() const { return !checkpoints.empty(); }

    /// Takes a checkpoint if one is due. Call it from time to time while the machine runs.
    void look();

    u64 first() const { return checkpoints.firstStep(); }

    /// The furthest step that the run has reached. Diagnostics of steps before it have already been printed.
    u64 furthest() const;

    /// Moves the machine to a step from first() to furthest(), with diagnostics muted.
    void goTo(u64 step);

    /// Moves the machine to after the step of the `number`th vertical blank. Returns false, and leaves the
    /// machine where it was, if that is not in the history.
    bool goToBlank(u64 number);

    /// Searches from the machine's position back to first(). `scan(end)` runs the machine to `end` and
    /// returns the last position of interest on the way, if any; so does searchBack. The machine's position
    /// is undefined afterwards.
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
