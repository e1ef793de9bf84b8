// Owns what every straight-line handler of the dispatch tables does around its instruction's semantics.
//
// An instruction is two functions of one name. The one that takes decoded operands is its semantics: it
// neither looks at the instruction word nor moves PC, so that any way of running code can call it. The one
// without arguments is the handler that the tables hold: decoding, trace line, semantics, PC.
#pragma once

#include "machine/machine.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// Writes the trace line of the current instruction when tracing. It decodes for itself: operands that had to
/// outlive the call would cost every untraced instruction the saving of registers.
template <class Fields, void (*traceLine)(const char*, Fields) = traceOperands>
inline void traceIfOn(const char* format) {
    if (tracing()) [[unlikely]] {
        traceLine(format, Fields::from(MipsCpu.opcode));
    }
}

/// The body of a straight-line instruction's handler. `format` is its trace line, for the arguments that
/// `traceLine` gives to operands of this format.
template <class Fields, void (*semantics)(Fields), void (*traceLine)(const char*, Fields) = traceOperands>
inline void straight(const char* format) {
    traceIfOn<Fields, traceLine>(format);
    semantics(Fields::from(MipsCpu.opcode));
    MipsCpu.PC += 4;
}

}  // namespace tarn::r5900
