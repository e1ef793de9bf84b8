// What the run loop and the devices call of the processor; r5900/ implements it.
#pragma once

#include "base/types.h"

namespace tarn {

/// Executes one instruction at PC, and its delay slot when it is a taken branch or a jump.
/// What is not implemented sets `pause` and leaves PC on the instruction.
void MipsUpdateCpu();

/// Executes steps, at least one and at most `limit`, with the results that as many calls of MipsUpdateCpu
/// have. Returns how many. All but the last have done nothing that anyone but the CPU could notice: they have
/// computed, branched, and accessed main memory. The last one may have done anything.
///
/// Before a step that runs are to end at (r5900/run_stops.h) it returns early, 0 when that is the first one.
/// MipsCpu.opcode is then of some earlier step.
u64 MipsRun(u64 limit);

}  // namespace tarn
