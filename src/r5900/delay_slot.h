// The delay slot of branches and jumps, in single steps.
#pragma once

#include "machine/machine.h"
#include "r5900/interpreter.h"
#include "r5900/stop.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// The deepest nesting of delay slots: a branch in a delay slot has a delay slot of its own, inside the
/// first. Deeper, the CPU pauses, so that no program can use up the host's stack.
inline constexpr u32 maximumDelaySlotDepth = 1024;

/// What a branch that is not taken does with the instruction in its delay slot.
enum class DelaySlot : u8 { Executed, Skipped };

/// Executes the instruction at PC as the delay slot of the current one. One that is nested too deeply is
/// refused as a fetch outside memory is: it counts in `cycle`, and pauses.
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

/// What a taken branch and every jump does once its trace line is written. The line is shown at once: the
/// delay slot writes its own, which is shown twice, by its step and by the one that began with the branch.
/// PC is the target in the end, whatever the delay slot made of it, unless that has stopped.
inline void jumpTo(u64 target) {
    if (tracing()) [[unlikely]] {
        showTraceLine();
    }
    MipsCpu.PC += 4;
    executeDelaySlot();
    if (stopReason() == Stop::None) [[likely]] {
        MipsCpu.PC = target;
    }
}

}  // namespace tarn::r5900
