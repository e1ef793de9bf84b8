// Watching which way a program goes.
#pragma once

#include "base/types.h"

namespace tarn::r5900 {

/// The last step of a run, which may have done anything.
struct LastStep {
    u64 pc = 0;
    u64 cycle = 0;               ///< MipsCpu.cycle before it
    bool branchWasSeen = false;  ///< it was a branch that `taken` has been called for, with its delay slot
};

/// What is told of each run of MipsRun. Between two calls the program goes in a straight line.
struct BranchObserver {
    void (*runBegins)(u64 pc);
    /// A branch or jump, before its delay slot. `cycle` is MipsCpu.cycle as it will be after the slot.
    void (*taken)(u32 word, u64 pc, u64 target, u64 cycle);
    /// A branch that is not taken, and skips its delay slot.
    void (*slotSkipped)(u64 pc);
    void (*runEnds)(const LastStep& step);
};

/// Has every run observed from now on; by null, none.
void observeBranches(const BranchObserver* observer);

}  // namespace tarn::r5900
