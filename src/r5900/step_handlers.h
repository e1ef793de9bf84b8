// The handlers that the dispatch tables hold: what a single step does around an instruction's semantics.
// Decoding, trace line, semantics, PC.
#pragma once

#include "machine/machine.h"
#include "r5900/branch.h"
#include "r5900/delay_slot.h"
#include "r5900/semantics.h"
#include "r5900/stop.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// Executes the instruction whose word is in MipsCpu.opcode and moves PC, or pauses and leaves PC.
using Handler = void (*)();

/// The handler of everything that is not implemented: it pauses, and nothing else.
void NI();

/// Writes the trace line of the current instruction as the list of instructions has it.
[[gnu::cold]] void traceInstruction();

inline void traceIfOn() {
    if (tracing()) [[unlikely]] {
        traceInstruction();
    }
}

/// Says that the current instruction names a condition code that there is not, and pauses.
[[gnu::cold]] void pauseOnOtherCondition();

/// The handler of an instruction without branches. A comparison with another condition code does nothing but
/// pause, after the instruction.
template <auto semantics>
void stepStraight() {
    traceIfOn();
    const auto fields = FieldsOf<semantics>::from(MipsCpu.opcode);
    if (namesOtherCondition(fields)) [[unlikely]] {
        pauseOnOtherCondition();
    } else {
        semantics(fields);
    }
    MipsCpu.PC += 4;
}

/// The handler of an instruction that the complete processor stops at under a condition.
template <auto semantics, auto stops, Stop reason>
void stepUnlessStopped() {
    traceIfOn();
    const auto fields = FieldsOf<semantics>::from(MipsCpu.opcode);
    if (stops(fields)) [[unlikely]] {
        stopWith(reason);
        return;
    }
    semantics(fields);
    MipsCpu.PC += 4;
}

/// The handler of what the complete processor does not do.
template <Stop reason>
void stopAlways() {
    stopWith(reason);
}

/// What every instruction of the complete processor goes through in a single step: r0 is 0 afterwards.
template <Handler handler>
void stepWithR0() {
    if (MipsCpu.PC % 4 != 0) [[unlikely]] {
        stopWith(Stop::UnalignedAddress);
        return;
    }
    handler();
    MipsCpu.GPR[0] = {};
}

/// The handler of a branch. With another condition code it pauses on the branch.
template <auto condition, DelaySlot whenNotTaken>
void stepBranch() {
    traceIfOn();
    const auto fields = FieldsOf<condition>::from(MipsCpu.opcode);
    if (namesOtherCondition(fields)) [[unlikely]] {
        pauseOnOtherCondition();
    } else if (isTaken<condition>(fields, MipsCpu.PC)) {
        jumpTo(branchTarget(MipsCpu.PC, fields.offset));
    } else {
        MipsCpu.PC += whenNotTaken == DelaySlot::Executed ? 4 : 8;
    }
}

/// The handler of a jump. It links before anything else, so that with rd = rs the trace line of JALR shows
/// the return address.
template <auto targetOf>
void stepJump() {
    const u64 target = targetOf(FieldsOf<targetOf>::from(MipsCpu.opcode), MipsCpu.PC);
    traceIfOn();
    jumpTo(target);
}

}  // namespace tarn::r5900
