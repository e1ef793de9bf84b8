// Running the machine: one step, many steps, until something ends the run.
#pragma once

#include "base/types.h"

#include <limits>

namespace tarn {

/// Whether driver steps do nothing: the CPU is paused, and the step in which that happened is over.
bool machineRests();

/// One driver step: an instruction, the DMA controller, vertical-blank pacing; nothing while the machine
/// rests. False when the step is not over: a transfer to the GIF is too long for the time that one call may
/// take, and the next call goes on with it.
bool driverStep();

/// Up to `limit` driver steps, ending early after the one in which the CPU pauses or a pane changes, before
/// one that runs are to end at, and within one whose transfer to the GIF goes on. Returns how many were
/// completed.
u64 runSteps(u64 limit);

/// Where a run ends, as values of the machine's counters.
struct RunLimits {
    u64 steps = std::numeric_limits<u64>::max();
    u64 verticalBlanks = std::numeric_limits<u64>::max();
};

enum class RunEnd : u8 {
    None,  ///< nothing ends the run yet
    StepLimit,
    FrameLimit,
    Paused,       ///< the CPU paused
    Interrupted,  ///< the caller said so
};

/// What of the limits has been reached. When both have, the vertical blank counts.
RunEnd limitReached(const RunLimits& limits);

/// Driver steps until a limit is reached, the CPU has paused, or `interrupted`, which is asked every few
/// thousand steps, returns true. A machine that rests makes no step.
RunEnd runUntil(const RunLimits& limits, bool (*interrupted)());

}  // namespace tarn
