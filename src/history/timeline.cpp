// Running again from checkpoints.
#include "history/timeline.h"

#include "base/diagnostics.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/run_loop.h"

#include <algorithm>

namespace tarn::history {
namespace {

using namespace std::chrono_literals;

constexpr auto shortestInterval = 100ms;  ///< between two checkpoints
constexpr int costFraction = 30;          ///< a checkpoint may take this fraction of the interval

/// A way of more steps leaves a checkpoint so many before its end: going back one more is quick then.
constexpr u64 longWay = 1'000'000;
constexpr u64 approach = 2'000;

constexpr u64 firstWindow = 4096;
constexpr u64 windowGrowth = 16;
constexpr u64 largestWindow = 1 << 26;

}  // namespace

void runTo(u64 step) {
    while (machine.counters.driverSteps < step) {
        if (machineRests()) {
            machine.cpu.pause = 0;
        }
        runSteps(step - machine.counters.driverSteps);
    }
}

void Timeline::begin() {
    checkpoints.clear();
    reached = 0;
    takeTimed();
}

void Timeline::takeTimed() {
    const Clock::time_point before = Clock::now();
    checkpoints.take();
    const Clock::time_point after = Clock::now();
    due = after + std::max<Clock::duration>(shortestInterval, (after - before) * costFraction);
}

void Timeline::look() {
    if (begun() && !gifTransferGoesOn() && Clock::now() >= due) {
        takeTimed();
    }
}

u64 Timeline::furthest() const { return std::max(reached, machine.counters.driverSteps); }

void Timeline::goTo(u64 step) {
    const MutedDiagnostics muted;
    reached = furthest();
    if (step - checkpoints.restore(step) > longWay) {
        runTo(step - approach);
        checkpoints.take();
    }
    runTo(step);
}

std::optional<u64> Timeline::searchBack(const std::function<std::optional<u64>(u64 end)>& scan) {
    u64 end = machine.counters.driverSteps;
    u64 window = firstWindow;
    while (end > first()) {
        const u64 begin = end - std::min(window, end - first());
        goTo(begin);
        const MutedDiagnostics muted;
        if (const std::optional<u64> found = scan(end)) {
            return found;
        }
        end = begin;
        window = std::min(window * windowGrowth, largestWindow);
    }
    return std::nullopt;
}

}  // namespace tarn::history
