// The complete processor's floating-point instructions.
//
// Both views of a register hold the same bit image. Moves, loads and stores of both processors keep it so.
#pragma once

#include "r5900/fpu_numbers.h"
#include "r5900/fpu_registers.h"
#include "r5900/gpr.h"

#include <algorithm>
#include <functional>

namespace tarn::r5900 {

inline u32 fpr(u8 number) { return std::bit_cast<u32>(MipsCpu.FPR32[number]); }

/// Replaces the flags of FCR31 in `mask`, and adds the new ones to the sticky flags.
inline void setFlags(u32 mask, u32 flags) {
    MipsCpu.FCR[31] = (MipsCpu.FCR[31] & ~u64{mask}) | flags | flags >> 11;
}

inline constexpr u32 rangeFlags = flagOverflow | flagUnderflow;
inline constexpr u32 divisionFlags = flagInvalid | flagDivision;

// Sums, differences and products, into a register or the accumulator.

inline void setRegister(u8 fd, Number result) {
    setFromImage(fd, result.image);
    setFlags(rangeFlags, result.flags);
}
inline void setAccumulator(Number result) {
    MipsCpu.ACC = result.image;
    setFlags(rangeFlags, result.flags);
}

/// Adds a product to the accumulator, or subtracts it; the product is truncated first.
template <Number (*combine)(u32, u32)>
inline Number accumulatorWithProduct(FpuFields f) {
    const Number product = productOf(fpr(f.fs), fpr(f.ft));
    const Number result = combine(MipsCpu.ACC, product.image);
    return {result.image, result.flags | product.flags};
}

inline void ADD_S_complete(FpuFields f) { setRegister(f.fd, sumOf(fpr(f.fs), fpr(f.ft))); }
inline void SUB_S_complete(FpuFields f) { setRegister(f.fd, differenceOf(fpr(f.fs), fpr(f.ft))); }
inline void MUL_S_complete(FpuFields f) { setRegister(f.fd, productOf(fpr(f.fs), fpr(f.ft))); }
inline void MADD_S(FpuFields f) { setRegister(f.fd, accumulatorWithProduct<sumOf>(f)); }
inline void MSUB_S(FpuFields f) { setRegister(f.fd, accumulatorWithProduct<differenceOf>(f)); }

inline void ADDA_S(FpuFields f) { setAccumulator(sumOf(fpr(f.fs), fpr(f.ft))); }
inline void SUBA_S(FpuFields f) { setAccumulator(differenceOf(fpr(f.fs), fpr(f.ft))); }
inline void MULA_S(FpuFields f) { setAccumulator(productOf(fpr(f.fs), fpr(f.ft))); }
inline void MADDA_S(FpuFields f) { setAccumulator(accumulatorWithProduct<sumOf>(f)); }
inline void MSUBA_S(FpuFields f) { setAccumulator(accumulatorWithProduct<differenceOf>(f)); }

// These clear the overflow and underflow flags.

inline void ABS_S(FpuFields f) { setRegister(f.fd, {fpr(f.fs) & largestNumber}); }
inline void NEG_S_complete(FpuFields f) { setRegister(f.fd, {fpr(f.fs) ^ signMask}); }

constexpr bool isBelow(u32 left, u32 right) { return ordered(left) < ordered(right); }

inline void MAX_S(FpuFields f) { setRegister(f.fd, {std::max(fpr(f.fs), fpr(f.ft), isBelow)}); }
inline void MIN_S(FpuFields f) { setRegister(f.fd, {std::min(fpr(f.fs), fpr(f.ft), isBelow)}); }

// Quotients and roots.

inline void setQuotient(u8 fd, Number result) {
    setFromImage(fd, result.image);
    setFlags(divisionFlags, result.flags);
}

inline void DIV_S_complete(FpuFields f) { setQuotient(f.fd, quotientOf(fpr(f.fs), fpr(f.ft))); }

/// The operand is ft. Assemblers for other processors encode it in fs and leave ft 0.
inline void SQRT_S(FpuFields f) { setQuotient(f.fd, rootOf(fpr(f.ft == 0 ? f.fs : f.ft))); }
inline void RSQRT_S(FpuFields f) { setQuotient(f.fd, reciprocalRootOf(fpr(f.fs), fpr(f.ft))); }

// Conversions, which change no flags.

inline void CVT_W_S_complete(FpuFields f) { setFromImage(f.fd, static_cast<u32>(integerOf(fpr(f.fs)))); }
inline void CVT_S_complete(FpuFields f) { setFromImage(f.fd, truncated(static_cast<s32>(fpr(f.fs))).image); }

// Comparisons. There is a single condition bit, so no operand selects one.

template <typename Relation>
inline void compareNumbers(FpuFields f, Relation relation) {
    setConditionBit(relation(comparable(fpr(f.fs)), comparable(fpr(f.ft))));
}

inline void C_F_S(FpuFields) { setConditionBit(false); }
inline void C_EQ_S_complete(FpuFields f) { compareNumbers(f, std::equal_to<s32>{}); }
inline void C_OLT_S_complete(FpuFields f) { compareNumbers(f, std::less<s32>{}); }
inline void C_OLE_S(FpuFields f) { compareNumbers(f, std::less_equal<s32>{}); }

// Moves to and from integer registers.

inline void MFC1_complete(FpuMoveFields f) { setWord(f.rt, fpr(f.fs)); }

/// Control register 0 identifies the unit. Register 31 has two bits that are always set, and writable flags.
inline constexpr u32 fpuIdentification = 0x2E30;
inline constexpr u32 fcr31Fixed = 0x01000001, fcr31Writable = 0x0083C078;

inline void CFC1(FpuMoveFields f) {
    const auto flags = static_cast<u32>(MipsCpu.FCR[31]) & fcr31Writable;
    setWord(f.rt, f.fs == 31 ? flags | fcr31Fixed : f.fs == 0 ? fpuIdentification : 0);
}
inline void CTC1(FpuMoveFields f) {
    if (f.fs == 31) {
        MipsCpu.FCR[31] = gpr(f.rt) & fcr31Writable;
    }
}

}  // namespace tarn::r5900
