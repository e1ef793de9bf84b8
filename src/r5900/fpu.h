// Single-precision instructions: arithmetic, moves, conversions and comparisons.
#pragma once

#include "r5900/fields.h"
#include "r5900/fpu_registers.h"
#include "r5900/gpr.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>

namespace tarn::r5900 {

static_assert(std::numeric_limits<f32>::is_iec559 && FLT_EVAL_METHOD == 0,
              "guest arithmetic needs single precision that rounds once");

// Arithmetic.

/// The NaN that an invalid operation gives.
inline constexpr u32 defaultNaN = 0xFFC00000;

/// The NaN that an operation on `left` and `right` gives: the first operand that is a NaN, made quiet. Not
/// left to the host, where it depends on the operand order that the compiler chooses.
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

template <typename Operation>
inline void arithmetic(FpuFields f, Operation operation) {
    const f32 left = MipsCpu.FPR32[f.fs];
    const f32 right = MipsCpu.FPR32[f.ft];
    const f32 result = operation(left, right);
    setValue(f.fd, std::isnan(result) ? resultingNaN(left, right) : result);
}

inline void ADD_S(FpuFields f) { arithmetic(f, std::plus<f32>{}); }

inline void SUB_S(FpuFields f) { arithmetic(f, std::minus<f32>{}); }

inline void MUL_S(FpuFields f) { arithmetic(f, std::multiplies<f32>{}); }

inline void DIV_S(FpuFields f) { arithmetic(f, std::divides<f32>{}); }

/// Flips the sign bit, of a NaN too.
inline void NEG_S(FpuFields f) {
    setValue(f.fd, std::bit_cast<f32>(std::bit_cast<u32>(MipsCpu.FPR32[f.fs]) ^ 0x80000000));
}

// Moves.

/// Copies both views, because MTC1 leaves an image of 64 bits.
inline void MOV_S(FpuFields f) {
    MipsCpu.FPR32[f.fd] = MipsCpu.FPR32[f.fs];
    MipsCpu.FPR128[f.fd].low = MipsCpu.FPR128[f.fs].low;
}

inline void MTC1(FpuMoveFields f) { setFromImage(f.fs, gpr(f.rt)); }

/// Intentional: converts the value to an integer, zero-extended, instead of moving bits. Together with
/// CVT_W_S, which leaves the integer as a value, compiled conversions give the right result.
inline void MFC1(FpuMoveFields f) {
    const f32 value = MipsCpu.FPR32[f.fs];
    const bool fits = value > -0x1p63F && value < 0x1p63F;
    setDoubleword(f.rt, fits ? static_cast<u32>(static_cast<s64>(value)) : 0);
}

// Conversions.

/// Truncates to a 32-bit integer, stored as a single-precision value.
inline void CVT_W_S(FpuFields f) {
    const f32 value = MipsCpu.FPR32[f.fs];
    const bool fits = value >= -0x1p31F && value < 0x1p31F;
    setValue(f.fd, fits ? static_cast<f32>(static_cast<s32>(value)) : -0x1p31F);
}

/// Intentional: takes all 64 bits of the image as an unsigned integer.
inline void CVT_S(FpuFields f) { setValue(f.fd, static_cast<f32>(MipsCpu.FPR128[f.fs].low)); }

// Comparisons, which set the condition bit.

inline void C_EQ_S(FpuCompareFields f) { setConditionBit(MipsCpu.FPR32[f.fs] == MipsCpu.FPR32[f.ft]); }

/// Intentional: in spite of its name true when an operand is a NaN.
inline void C_OLT_S(FpuCompareFields f) { setConditionBit(!(MipsCpu.FPR32[f.fs] >= MipsCpu.FPR32[f.ft])); }

}  // namespace tarn::r5900
