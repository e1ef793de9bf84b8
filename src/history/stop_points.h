// Breakpoints and watchpoints: what runs stop at, forwards and backwards.
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

/// A watchpoint and the watched byte that an access touches first.
struct WatchHit {
    WatchKind kind = WatchKind::Write;
    u32 address = 0;
};

/// The points at which the machine is to stop. Bounded: a point too many is refused.
///
/// A breakpoint stops the machine before the driver step that begins at its address. The delay slot of a
/// taken branch belongs to the branch's step, so a breakpoint on it is passed over unless the slot is reached
/// by itself. A watchpoint stops it before the step that makes the access.
class StopPoints {
  public:
    /// Adds a point; adding it again changes nothing. False when there are too many already.
    bool addBreakpoint(u32 address);
    bool addWatchpoint(const Watchpoint& watchpoint);

    /// Removes a point; harmless when it is not there.
    void removeBreakpoint(u32 address);
    void removeWatchpoint(const Watchpoint& watchpoint);

    void clear();

    bool empty() const { return breakpoints.empty() && watchpoints.empty(); }
    bool breaksAt(u64 pc) const;

    /// The watchpoint that the access touches, through whichever mirror of the memory it goes.
    std::optional<WatchHit> watchHit(const MemoryAccess& access) const;

    /// The watchpoint that the next step hits.
    std::optional<WatchHit> nextWatchHit() const;

    /// Whether the next step is one to stop at.
    bool stopHere() const { return breaksAt(MipsCpu.PC) || nextWatchHit(); }

  private:
    friend class ActiveStops;

    std::vector<u32> breakpoints;
    std::vector<Watchpoint> watchpoints;
};

/// While one lives, runs end at these points, which must not change. One at a time.
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

/// Runs the machine to `step`, or to before a step that runs end at. Pauses are lifted, as by a debugger that
/// continues.
void runTo(u64 step);

/// Makes one step, whatever stops there are.
void makeStep();

}  // namespace tarn::history
