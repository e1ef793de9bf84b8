// The handlers in the dispatch tables. In a single step each does decoding, trace line, semantics and the
// update of PC.
#pragma once

#include "machine/machine.h"
#include "r5900/branch.h"
#include "r5900/delay_slot.h"
#include "r5900/semantics.h"
#include "r5900/stop.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// Executes the instruction in MipsCpu.opcode and advances PC, or pauses without changing PC.
using Handler = void (*)();

/// The handler of everything that is not implemented: it only pauses.
void NI();

inline void traceIfOn() {
    if (tracing()) [[unlikely]] {
        traceLine(MipsCpu.opcode);
    }
}

/// The handler of word 0.
inline void skipWord() { MipsCpu.PC += 4; }

/// Reports that the current instruction uses another condition code than 0, and pauses.
[[gnu::cold]] void pauseOnOtherCondition();

/// The handler of an instruction that is not a branch. A comparison with another condition code only pauses,
/// with PC after the instruction.
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

/// The handler of an instruction of the complete processor that stops under a condition.
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

/// The handler of what the complete processor does not support.
template <Stop reason>
void stopAlways() {
    stopWith(reason);
}

/// Wraps all handlers of the complete processor: checks the alignment of PC, and keeps r0 at 0.
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
template <auto condition, DelaySlot whenNotTaken, Link links>
void stepBranch() {
    traceIfOn();
    const auto fields = FieldsOf<condition>::from(MipsCpu.opcode);
    if (namesOtherCondition(fields)) [[unlikely]] {
        pauseOnOtherCondition();
    } else if (decideBranch<condition, links>(fields, MipsCpu.PC)) {
        jumpTo(branchTarget(MipsCpu.PC, fields.offset));
    } else {
        MipsCpu.PC += whenNotTaken == DelaySlot::Executed ? 4 : 8;
    }
}

/// The handler of a jump. Intentional: links before it traces, so that with rd = rs the trace line of JALR
/// shows the return address.
template <auto targetOf>
void stepJump() {
    const u64 target = targetOf(FieldsOf<targetOf>::from(MipsCpu.opcode), MipsCpu.PC);
    traceIfOn();
    jumpTo(target);
}

}  // namespace tarn::r5900
