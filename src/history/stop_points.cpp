// Breakpoints and watchpoints, and runs that end at them.
#include "history/stop_points.h"

#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/run_loop.h"

#include <algorithm>

namespace tarn::history {
namespace {

constexpr std::size_t pointLimit = 256;  ///< of each kind; each stop tests all of them

const StopPoints* activePoints = nullptr;

template <typename Point>
bool addOnce(std::vector<Point>& points, const Point& point) {
    if (std::find(points.begin(), points.end(), point) != points.end()) {
        return true;
    }
    if (points.size() >= pointLimit) {
        return false;
    }
    points.push_back(point);
    return true;
}

constexpr bool concerns(WatchKind kind, Access access) {
    return kind == WatchKind::Access || (kind == WatchKind::Write) == (access == Access::Store);
}

}  // namespace

bool StopPoints::addBreakpoint(u32 address) { return addOnce(breakpoints, address); }
bool StopPoints::addWatchpoint(const Watchpoint& watchpoint) { return addOnce(watchpoints, watchpoint); }
void StopPoints::removeBreakpoint(u32 address) { std::erase(breakpoints, address); }
void StopPoints::removeWatchpoint(const Watchpoint& watchpoint) { std::erase(watchpoints, watchpoint); }

void StopPoints::clear() {
    breakpoints.clear();
    watchpoints.clear();
}

bool StopPoints::breaksAt(u64 pc) const {
    return std::find(breakpoints.begin(), breakpoints.end(), static_cast<u32>(pc)) != breakpoints.end();
}

std::optional<WatchHit> StopPoints::watchHit(const MemoryAccess& access) const {
    const u64 accessFirst = placeOf(access.address, access.kind);
    const u64 accessEnd = accessFirst + access.length;
    for (const Watchpoint& watchpoint : watchpoints) {
        if (!concerns(watchpoint.kind, access.kind)) {
            continue;
        }
        const u64 first = placeOf(watchpoint.address, access.kind);
        const u64 end = first + watchpoint.length;
        if (accessFirst < end && first < accessEnd) {
            // Reported in the view in which the watchpoint was set, not in that of the access.
            const u64 touched = std::max(first, accessFirst) - first;
            return WatchHit{watchpoint.kind, static_cast<u32>(watchpoint.address + touched)};
        }
    }
    return std::nullopt;
}

std::optional<WatchHit> StopPoints::nextWatchHit() const {
    const std::optional<MemoryAccess> access = watchpoints.empty() ? std::nullopt : nextMemoryAccess(MipsCpu);
    return access ? watchHit(*access) : std::nullopt;
}

ActiveStops::ActiveStops(const StopPoints& points)
    : stops{[](u32 pc) { return activePoints->breaksAt(pc); }, points.watchpoints.empty() ? nullptr : &lines,
            [] { return activePoints->stopHere(); }} {
    for (const Watchpoint& watchpoint : points.watchpoints) {
        lines.add(watchpoint.address, watchpoint.length);
    }
    activePoints = &points;
    r5900::stopRuns(&stops);
}

ActiveStops::~ActiveStops() {
    r5900::stopRuns(nullptr);
    activePoints = nullptr;
}

void runTo(u64 step) {
    const u64& now = machine.counters.driverSteps;
    while (now < step && (activePoints == nullptr || gifTransferGoesOn() || !activePoints->stopHere())) {
        if (machineRests()) {
            machine.cpu.pause = 0;
        }
        runSteps(step - now);
    }
}

void makeStep() {
    if (machineRests()) {
        machine.cpu.pause = 0;
    }
    while (!driverStep()) {
    }
}

}  // namespace tarn::history
