// The delay slot of branches and jumps, in single steps.
#pragma once

#include "machine/machine.h"
#include "r5900/interpreter.h"
#include "r5900/stop.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// The nesting limit of delay slots: a branch in a delay slot executes its own delay slot inside the first.
/// Beyond it the CPU pauses, so that no program can exhaust the host's stack.
inline constexpr u32 maximumDelaySlotDepth = 1024;

/// What a branch does with its delay slot when it is not taken.
enum class DelaySlot : u8 { Executed, Skipped };

/// Executes the instruction at PC as the delay slot of the current one. Beyond the nesting limit it fails
/// like a fetch outside memory: it counts in `cycle` and pauses.
inline void executeDelaySlot() {
    MipsCpu.delaySlots += 1;
    if (MipsCpu.delaySlotDepth == maximumDelaySlotDepth) [[unlikely]] {
        MipsCpu.cycle += 1;
        MipsCpu.pause = 1;
        return;
    }
    MipsCpu.delaySlotDepth += 1;
    MipsUpdateCpu();
    MipsCpu.delaySlotDepth -= 1;
}

/// Executes the delay slot and jumps, after the trace line of the branch has been written. That line is shown
/// at once, because the delay slot replaces it; the line of the delay slot is shown twice, by its own step
/// and by that of the branch. PC becomes the target whatever the delay slot did to it, unless the slot
/// stopped.
inline void jumpTo(u64 target) {
    if (tracing()) [[unlikely]] {
        showTakenBranch();
    }
    MipsCpu.PC += 4;
    executeDelaySlot();
    if (stopReason() == Stop::None) [[likely]] {
        MipsCpu.PC = target;
    }
}

}  // namespace tarn::r5900
