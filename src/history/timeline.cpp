// Moving to any step of a run by running again from checkpoints.
#include "history/timeline.h"

#include "base/diagnostics.h"
#include "history/stop_points.h"
#include "machine/devices.h"
#include "machine/machine.h"

#include <algorithm>
#include <ctime>

namespace tarn::history {
namespace {

using namespace std::chrono_literals;

constexpr auto shortestInterval = 100ms;  ///< between two checkpoints
constexpr int costFraction = 40;          ///< a checkpoint may take this fraction of the interval

/// Going further than this takes a checkpoint `approach` steps before the end, so that the next step back is
/// quick.
constexpr u64 longWay = 1'000'000;
constexpr u64 approach = 2'000;

constexpr u64 firstWindow = 4096;
constexpr u64 windowGrowth = 16;
constexpr u64 largestWindow = 1 << 26;

}  // namespace

void Timeline::begin() {
    checkpoints.clear();
    reached = 0;
    checkpoints.take();  // copies everything, so its cost is no measure for the next ones
    due = Clock::now() + shortestInterval;
}

void Timeline::takeTimed() {
    const std::clock_t before = std::clock();  // processor time, so that other programs do not cause gaps
    checkpoints.take();
    const std::chrono::duration<double> cost(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
    due = Clock::now() +
          std::max<Clock::duration>(shortestInterval,
                                    std::chrono::duration_cast<Clock::duration>(cost * costFraction));
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

bool Timeline::goToBlank(u64 number) {
    const MutedDiagnostics muted;
    const u64& blanks = machine.counters.verticalBlanks;
    const u64& now = machine.counters.driverSteps;
    const u64 origin = now;
    reached = furthest();
    checkpoints.restoreBeforeBlank(number);
    const bool within = blanks < number;
    while (blanks < number && now < reached) {
        // There is no blank before the countdown is over.
        runTo(std::min(reached, now + 1 + quietSteps()));
    }
    if (!within || blanks != number) {
        goTo(origin);
        return false;
    }
    return true;
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
