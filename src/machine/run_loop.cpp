// The driver step, and loops over it.
#include "machine/run_loop.h"

#include "base/diagnostics.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/processor.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr u64 stepsPerLook = 1 << 14;  ///< between two calls of `interrupted`

}  // namespace

bool machineRests() { return MipsCpu.pause != 0 && !gifTransferGoesOn(); }

bool driverStep() {
    if (machineRests()) {
        return true;
    }
    if (!gifTransferGoesOn()) [[likely]] {
        MipsUpdateCpu();
    }
    if (!DmaUpdate()) {
        return false;
    }
    GSUpdate();
    ++machine.counters.driverSteps;
    return true;
}

u64 runSteps(u64 limit) {
    paneChanged = false;
    u64 steps = 0;
    while (steps < limit && !machineRests() && !paneChanged) {
        u64 run = 1;
        if (!gifTransferGoesOn()) {
            run = MipsRun(std::min(limit - steps, quietSteps() + 1));
            if (run == 0) {
                break;
            }
            passQuietSteps(run - 1);
            machine.counters.driverSteps += run - 1;
        }
        if (!DmaUpdate()) {
            return steps + run - 1;
        }
        GSUpdate();
        ++machine.counters.driverSteps;
        steps += run;
    }
    return steps;
}

RunEnd limitReached(const RunLimits& limits) {
    if (machine.counters.verticalBlanks >= limits.verticalBlanks) {
        return RunEnd::FrameLimit;
    }
    return machine.counters.driverSteps >= limits.steps ? RunEnd::StepLimit : RunEnd::None;
}

RunEnd runUntil(const RunLimits& limits, bool (*interrupted)()) {
    for (;;) {
        if (interrupted()) {
            return RunEnd::Interrupted;
        }
        if (machineRests()) {
            return RunEnd::Paused;
        }
        if (const RunEnd end = limitReached(limits); end != RunEnd::None) {
            return end;
        }
        runSteps(std::min(limits.steps - machine.counters.driverSteps, stepsPerLook));
    }
}

}  // namespace tarn
