// The interface for observers of control flow.
#pragma once

#include "base/types.h"

namespace tarn::r5900 {

/// The last step of a run, which may be any instruction.
struct LastStep {
    u64 pc = 0;
    u64 cycle = 0;               ///< MipsCpu.cycle before it
    bool branchWasSeen = false;  ///< a branch for which `taken` has been called, and its delay slot
};

/// Callbacks during MipsRun. Between two of them the program runs straight-line code.
struct BranchObserver {
    void (*runBegins)(u64 pc);
    /// A branch or jump, before its delay slot. `cycle` is MipsCpu.cycle as it will be after the slot.
    void (*taken)(u32 word, u64 pc, u64 target, u64 cycle);
    /// A likely branch that is not taken and skips its delay slot.
    void (*slotSkipped)(u64 pc);
    void (*runEnds)(const LastStep& step);
};

/// Attaches an observer to all later runs; null detaches it.
void observeBranches(const BranchObserver* observer);

}  // namespace tarn::r5900
