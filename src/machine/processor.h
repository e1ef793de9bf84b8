// The processor's functions for the run loop and the devices; r5900/ implements them.
#pragma once

#include "base/types.h"

namespace tarn {

/// Executes the instruction at PC, and its delay slot if it is a taken branch or a jump. An instruction that
/// is not implemented sets `pause` and leaves PC unchanged.
void MipsUpdateCpu();

/// Executes at least one and at most `limit` steps, with the same results as that many calls of
/// MipsUpdateCpu. Returns how many. All but the last have only computed, branched and accessed main memory;
/// the last may have done anything.
///
/// Returns early before a step at which runs are to stop (r5900/run_stops.h): 0 if that is the first.
/// MipsCpu.opcode is then that of an earlier step.
u64 MipsRun(u64 limit);

}  // namespace tarn
