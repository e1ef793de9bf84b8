// Breakpoints and watchpoints, at which runs stop.
#pragma once

#include "base/types.h"
#include "history/memory_access.h"
#include "r5900/run_stops.h"

#include <optional>
#include <vector>

namespace tarn::history {

enum class WatchKind : u8 { Write, Read, Access };

struct Watchpoint {
    WatchKind kind = WatchKind::Write;
    u32 address = 0;
    u32 length = 0;  ///< in bytes, not 0

    friend bool operator==(const Watchpoint&, const Watchpoint&) = default;
};

/// A watchpoint, and the first watched byte that an access touches.
struct WatchHit {
    WatchKind kind = WatchKind::Write;
    u32 address = 0;
};

/// The points at which the machine stops. Their number is limited.
///
/// A breakpoint stops the machine before a driver step that begins at its address. The delay slot of a taken
/// branch is part of the branch's step, so a breakpoint on it has no effect unless the slot is reached by
/// itself. A watchpoint stops before the step that makes the access.
class StopPoints {
  public:
    /// Add a point; adding it again has no effect. Return false if there are too many.
    bool addBreakpoint(u32 address);
    bool addWatchpoint(const Watchpoint& watchpoint);

    /// Remove a point, if it is there.
    void removeBreakpoint(u32 address);
    void removeWatchpoint(const Watchpoint& watchpoint);

    void clear();

    bool empty() const { return breakpoints.empty() && watchpoints.empty(); }
    bool breaksAt(u64 pc) const;

    /// The watchpoint that an access touches, whichever views of memory they use.
    std::optional<WatchHit> watchHit(const MemoryAccess& access) const;

    /// The watchpoint that the next step hits.
    std::optional<WatchHit> nextWatchHit() const;

    /// Whether to stop before the next step.
    bool stopHere() const { return breaksAt(MipsCpu.PC) || nextWatchHit(); }

  private:
    friend class ActiveStops;

    std::vector<u32> breakpoints;
    std::vector<Watchpoint> watchpoints;
};

/// While it exists, runs stop at these points, which must not change. Only one at a time.
class ActiveStops {
  public:
    explicit ActiveStops(const StopPoints& points);
    ~ActiveStops();
    ActiveStops(const ActiveStops&) = delete;
    ActiveStops& operator=(const ActiveStops&) = delete;

  private:
    r5900::WatchedLines lines;
    r5900::RunStops stops;
};

/// Runs the machine to `step`, or until before a step at which runs stop. Clears pauses, as a debugger that
/// continues.
void runTo(u64 step);

/// Makes a step, ignoring stop points.
void makeStep();

}  // namespace tarn::history
