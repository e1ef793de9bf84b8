// Owns the single-precision instructions: arithmetic, moves, conversions and comparisons.
#pragma once

#include "base/diagnostics.h"
#include "r5900/fpu_registers.h"
#include "r5900/handler.h"
#include "r5900/registers.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>

namespace tarn::r5900 {

static_assert(std::numeric_limits<f32>::is_iec559 && FLT_EVAL_METHOD == 0,
              "guest arithmetic needs single precision that rounds once");

// Arithmetic.

/// The NaN that an invalid operation gives.
inline constexpr u32 defaultNaN = 0xFFC00000;

/// The NaN that an operation on `left` and `right` gives: the first operand that is one, made quiet. Said
/// here and not left to the host, where it depends on how the compiler orders the operands.
inline f32 resultingNaN(f32 left, f32 right) {
    constexpr u32 quiet = 0x00400000;
    if (std::isnan(left)) {
        return std::bit_cast<f32>(std::bit_cast<u32>(left) | quiet);
    }
    if (std::isnan(right)) {
        return std::bit_cast<f32>(std::bit_cast<u32>(right) | quiet);
    }
    return std::bit_cast<f32>(defaultNaN);
}

template <class Operation>
inline void arithmetic(FpuFields f, Operation operation) {
    const f32 left = MipsCpu.FPR32[f.fs];
    const f32 right = MipsCpu.FPR32[f.ft];
    const f32 result = operation(left, right);
    setValue(f.fd, std::isnan(result) ? resultingNaN(left, right) : result);
}

inline void ADD_S(FpuFields f) { arithmetic(f, std::plus<f32>{}); }
inline void ADD_S() { straight<FpuFields, ADD_S>("add_s %s,%s,%s"); }

inline void SUB_S(FpuFields f) { arithmetic(f, std::minus<f32>{}); }
inline void SUB_S() { straight<FpuFields, SUB_S>("sub_s %s,%s,%s\n"); }

inline void MUL_S(FpuFields f) { arithmetic(f, std::multiplies<f32>{}); }
inline void MUL_S() { straight<FpuFields, MUL_S>("mul_s %s,%s,%s"); }

inline void DIV_S(FpuFields f) { arithmetic(f, std::divides<f32>{}); }
inline void DIV_S() { straight<FpuFields, DIV_S>("div_s %s,%s,%s"); }

/// Flips the sign bit, of a NaN too.
inline void NEG_S(FpuFields f) {
    setValue(f.fd, std::bit_cast<f32>(std::bit_cast<u32>(MipsCpu.FPR32[f.fs]) ^ 0x80000000));
}
inline void NEG_S() { straight<FpuFields, NEG_S, traceUnary>("neg_s %s,%s"); }

// Moves.

/// Copies both views, so that all 64 bits of an image that MTC1 made survive.
inline void MOV_S(FpuFields f) {
    MipsCpu.FPR32[f.fd] = MipsCpu.FPR32[f.fs];
    MipsCpu.FPR128[f.fd].low = MipsCpu.FPR128[f.fs].low;
}
inline void MOV_S() { straight<FpuFields, MOV_S, traceUnary>("mov_s %s,%s"); }

inline void MTC1(FpuMoveFields f) { setFromImage(f.fs, gpr(f.rt)); }
inline void MTC1() { straight<FpuMoveFields, MTC1>("mtc1 %s,%s"); }

/// Moves the value converted to an integer, not the bits, and zero-extends it: meant. With CVT_W_S, which
/// leaves its integer as a value, compiled code's conversions come out right.
inline void MFC1(FpuMoveFields f) {
    const f32 value = MipsCpu.FPR32[f.fs];
    const bool fits = value > -0x1p63F && value < 0x1p63F;
    setDoubleword(f.rt, fits ? static_cast<u32>(static_cast<s64>(value)) : 0);
}
inline void MFC1() { straight<FpuMoveFields, MFC1>("mfc1 %s,%s"); }

// Conversions.

/// Truncates to a 32-bit integer and leaves that as a single-precision value.
inline void CVT_W_S(FpuFields f) {
    const f32 value = MipsCpu.FPR32[f.fs];
    const bool fits = value >= -0x1p31F && value < 0x1p31F;
    setValue(f.fd, fits ? static_cast<f32>(static_cast<s32>(value)) : -0x1p31F);
}
inline void CVT_W_S() { straight<FpuFields, CVT_W_S, traceUnary>("cvt_w_s\t%s, %s"); }

/// Takes all 64 bits of the image as an unsigned integer: meant.
inline void CVT_S(FpuFields f) { setValue(f.fd, static_cast<f32>(MipsCpu.FPR128[f.fs].low)); }
inline void CVT_S() { straight<FpuFields, CVT_S, traceUnary>("cvt_s\t%s,%s"); }

// Comparisons, which set the condition bit.

/// There is only condition code 0: others pause, after the instruction.
inline void compare(FpuCompareFields f, bool holds, const char* message) {
    if (f.cc != 0) [[unlikely]] {
        printDiagnostic("%s", message);
        MipsCpu.pause = 1;
        return;
    }
    setConditionBit(holds);
}

inline void C_EQ_S(FpuCompareFields f) {
    compare(f, MipsCpu.FPR32[f.fs] == MipsCpu.FPR32[f.ft], "C_EQ_S : cc not implemented\n");
}
inline void C_EQ_S() { straight<FpuCompareFields, C_EQ_S>("c_eq_s %x,%s,%s"); }

/// In spite of its name true when an operand is a NaN: meant.
inline void C_OLT_S(FpuCompareFields f) {
    compare(f, !(MipsCpu.FPR32[f.fs] >= MipsCpu.FPR32[f.ft]), "C_OLT_S : cc not implemented\n");
}
inline void C_OLT_S() { straight<FpuCompareFields, C_OLT_S>("c_olt_s %x,%s,%s"); }

}  // namespace tarn::r5900
