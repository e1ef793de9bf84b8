// Control of the run by keys.
#include "shell/run_control.h"

#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "shell/driver.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

constexpr u32 usualRate = 60;

/// The maximum number of steps for one call of advanceRun().
u64 stepsAtOnce(const RunControl& run) {
    const u64 most = std::max<u64>(Settings.stepsPerPoll, 1);
    if (run.endStep) {
        return 1;
    }
    return run.endBlank ? std::min(most, quietSteps() + 1) : most;
}

/// Pauses the machine if it has reached the end of a request.
void endAtGoal(RunControl& run) {
    const bool reached = (run.endStep && machine.counters.driverSteps >= *run.endStep) ||
                         (run.endBlank && verticalBlanks >= *run.endBlank);
    if (reached || MipsCpu.pause != 0) {
        run.endStep.reset();
        run.endBlank.reset();
    }
    if (reached && MipsCpu.pause == 0) {
        MipsCpu.pause = 1;
        run.pausedByKey = Driver.restReported = true;
    }
}

}  // namespace

void request(RunRequest what) {
    RunControl& run = Driver.run;
    if (run.seesTo != nullptr && run.seesTo(what)) {
        return;
    }
    run.endStep.reset();
    run.endBlank.reset();
    if (what == RunRequest::Pause) {
        run.pausedByKey = run.pausedByKey || MipsCpu.pause == 0;
        MipsCpu.pause = 1;
        Driver.restReported = true;  // the user knows
        return;
    }
    MipsCpu.pause = 0;
    run.pausedByKey = false;
    if (what == RunRequest::Step) {
        run.endStep = machine.counters.driverSteps + 1;
    } else if (what == RunRequest::NextBlank) {
        run.endBlank = verticalBlanks + 1;
    }
}

void togglePace() {
    if (Settings.frameRate == 0) {
        Settings.frameRate = usualRate;
    } else {
        Driver.run.unpaced = !Driver.run.unpaced;
    }
}

u32 shownRate() { return Driver.run.unpaced ? 0 : Settings.frameRate; }

bool machineStands() { return machineRests() || (Driver.run.holds != nullptr && Driver.run.holds()); }

void advanceRun() {
    RunControl& run = Driver.run;
    if (machineRests()) {
        run.pacer.rest(Settings.extraKeys == 1 ? usualRate : Settings.frameRate);
    } else {
        run.pausedByKey = false;
        if (run.pacer.holds(verticalBlanks, shownRate())) {
            return;
        }
    }
    // A single step is always traced.
    const u8 formerTrace = std::exchange(Settings.debug_op, run.endStep ? u8{1} : Settings.debug_op);
    run.advance(stepsAtOnce(run));
    Settings.debug_op = formerTrace;
    endAtGoal(run);
}

}  // namespace tarn
