// Declares the instruction trace: the line buffer, and one formatting function for each class of operands.
#pragma once

#include "base/types.h"
#include "machine/settings.h"
#include "r5900/fields.h"

#include <array>

namespace tarn {

/// One line of the register dump.
inline std::array<char, 100> debugTempOpcodeText{};

namespace r5900 {

/// Whether instructions are traced.
inline bool tracing() { return Settings.debug_op == 1; }

// Cold, so that they are not inlined where tracing is off nearly always.

/// Sends the trace line, and with it the 34 register lines, to their panes.
[[gnu::cold]] void showTraceLine();
[[gnu::cold]] void showStep();

/// Puts PC and the formatted text into debugTempText.
[[gnu::cold, gnu::format(printf, 1, 2)]] void traceText(const char* format, ...);

// Each writes the line of one class of operands; `format` is for the operands named in its comment.
void traceOperands(const char* format, ImmediateFields f);               // rt, rs, imm
void traceUpperImmediate(const char* format, ImmediateFields f);         // rt, imm
void traceOperands(const char* format, RegisterFields f);                // rd, rs, rt
void traceSwapped(const char* format, RegisterFields f);                 // rd, rt, rs
void traceSources(const char* format, RegisterFields f);                 // rs, rt
void traceDestination(const char* format, RegisterFields f);             // rd
void traceOperands(const char* format, ShiftFields f);                   // rd, rt, sa
void traceOperands(const char* format, MemoryFields f);                  // rt, offset, base
void traceOperands(const char* format, FpuMemoryFields f);               // ft as a number, offset, base
void traceImage(const char* format, FpuMemoryFields f);                  // ft, its bit image
void traceOperands(const char* format, BranchFields f, u64 target);      // rs, rt, target
void traceOperands(const char* format, ZeroBranchFields f, u64 target);  // rs, target
void traceOperands(const char* format, FpuBranchFields f, u64 target);   // ccb, target
void traceOperands(const char* format, JumpFields f, u64 target);        // target
void traceJumpRegister(const char* format, RegisterFields f);            // rs, rs, value of rs
void traceJumpAndLinkRegister(const char* format, RegisterFields f);     // rd, rs, rs, value of rs
void traceOperands(const char* format, Cop0Fields f);                    // rt, rd, sel
void traceOperands(const char* format, FpuFields f);                     // fd, fs, ft
void traceUnary(const char* format, FpuFields f);                        // fd, fs
void traceOperands(const char* format, FpuMoveFields f);                 // rt, fs
void traceOperands(const char* format, FpuCompareFields f);              // cc, fs, ft

}  // namespace r5900
}  // namespace tarn
