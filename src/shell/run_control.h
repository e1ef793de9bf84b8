// Control of the run by keys: pause, single step, run to the next vertical blank, pace.
#pragma once

#include "machine/run_loop.h"
#include "shell/frame_pacer.h"

#include <optional>

namespace tarn {

enum class RunRequest : u8 { Pause, Resume, Step, NextBlank };

struct RunControl {
    std::optional<u64> endStep;   ///< pause after this driver step
    std::optional<u64> endBlank;  ///< or after this vertical blank
    bool unpaced = false;
    bool pausedByKey = false;  ///< the user asked for the current pause, so it is not reported
    FramePacer pacer;

    /// Runs up to `steps` driver steps. May end early, like runSteps.
    void (*advance)(u64 steps) = [](u64 steps) { runSteps(steps); };
    /// Offers a request to a debugger. Returns true if the debugger has handled it. Null without one.
    bool (*seesTo)(RunRequest request) = nullptr;
    /// Whether the debugger has stopped the machine.
    bool (*holds)() = nullptr;
};

/// Handles the request of a key.
void request(RunRequest what);

/// Switches between paced and as fast as possible.
void togglePace();

/// The maximum number of vertical blanks per second; 0: no limit.
u32 shownRate();

/// Whether the machine is paused, or stopped by a debugger.
bool machineStands();

/// Runs for a short time, after which input can be handled.
void advanceRun();

}  // namespace tarn
