// Running the machine: one step, many steps, or until a condition.
#pragma once

#include "base/types.h"

#include <limits>

namespace tarn {

/// Whether driver steps have no effect: the CPU is paused, and the step in which it paused is complete.
bool machineRests();

/// Makes a driver step: an instruction, the DMA controller, vertical-blank pacing. Does nothing while the
/// machine rests. Returns false if a transfer to the GIF is too long for one call; the next call continues
/// the step.
bool driverStep();

/// Makes up to `limit` driver steps. Stops early after one in which the CPU pauses or a pane changes, before
/// one at which runs are to stop, and within one whose transfer to the GIF is not complete. Returns how many
/// were completed.
u64 runSteps(u64 limit);

/// Where a run ends, as values of the machine's counters.
struct RunLimits {
    u64 steps = std::numeric_limits<u64>::max();
    u64 verticalBlanks = std::numeric_limits<u64>::max();
};

enum class RunEnd : u8 {
    None,  ///< not yet
    StepLimit,
    FrameLimit,
    Paused,       ///< the CPU paused
    Interrupted,  ///< by the caller
};

/// Which limit has been reached. If both have, the vertical blank takes precedence.
RunEnd limitReached(const RunLimits& limits);

/// Makes driver steps until a limit is reached, the CPU pauses, or `interrupted`, which is called every few
/// thousand steps, returns true. A machine that rests makes no step.
RunEnd runUntil(const RunLimits& limits, bool (*interrupted)());

}  // namespace tarn
