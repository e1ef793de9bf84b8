// Runs of many steps.
#include "r5900/runner.h"

#include "machine/processor.h"
#include "r5900/interpreter.h"
#include "r5900/threaded_interpreter.h"
#include "r5900/trace.h"

#include <algorithm>

namespace tarn::r5900 {

namespace {

/// The longest run. Optimising compilers turn the calls between routines into jumps; without optimisation
/// this limit bounds the host's stack.
constexpr u64 longestRun = 4096;

}  // namespace

u64 runDecoded(u64 limit) {
    if (tracing()) {
        runState.lastStep = {MipsCpu.PC, MipsCpu.cycle};
        MipsUpdateCpu();
        return 1;
    }
    runState = {std::min(limit, longestRun), 0, MipsCpu.cycle, MipsCpu.delaySlots, {}};
    find(MipsCpu.PC, StepBudget::of(runState.limit, MipsCpu.PC), 0, MipsMemory);
    return runState.steps;
}

}  // namespace tarn::r5900

namespace tarn {

u64 MipsRun(u64 limit) { return r5900::runMethod(limit); }

}  // namespace tarn
