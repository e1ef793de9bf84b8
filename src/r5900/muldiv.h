// Multiplications, divisions, and the moves from HI and LO.
#pragma once

#include "r5900/fields.h"
#include "r5900/gpr.h"

namespace tarn::r5900 {

/// Writes LO, HI and, as on this processor, a third operand: rd gets the low half too. rd may be r0.
inline void MULT(RegisterFields f) {
    const auto product = static_cast<u64>(s64{signedWord(gpr(f.rs))} * signedWord(gpr(f.rt)));
    setWord(MipsCpu.LO, product);
    setWord(MipsCpu.HI, product >> 32);
    setDoubleword(f.rd, MipsCpu.LO.low);
}

/// The multiplication of the second pipeline, which uses the upper halves of LO and HI.
/// Intentional: unsigned, with 64-bit products; HI1 gets the product of the upper words of the operands.
inline void MULT1(RegisterFields f) {
    const u64 left = gpr(f.rs);
    const u64 right = gpr(f.rt);
    MipsCpu.LO.high = (left & 0xFFFFFFFF) * (right & 0xFFFFFFFF);
    MipsCpu.HI.high = (left >> 32) * (right >> 32);
    setDoubleword(f.rd, MipsCpu.LO.high);
}

inline void DMULTU(RegisterFields f) {
    const auto product = static_cast<unsigned __int128>(gpr(f.rs)) * gpr(f.rt);
    setDoubleword(MipsCpu.LO, static_cast<u64>(product));
    setDoubleword(MipsCpu.HI, static_cast<u64>(product >> 64));
    setDoubleword(f.rd, MipsCpu.LO.low);
}

/// As on the hardware: a division by zero gives the dividend as remainder, and as quotient 1 for a negative
/// dividend, otherwise -1. The only quotient that overflows, -2^31 / -1, wraps.
inline void DIV(RegisterFields f) {
    const s64 dividend = signedWord(gpr(f.rs));
    const s64 divisor = signedWord(gpr(f.rt));
    const s64 quotient = divisor != 0 ? dividend / divisor : dividend < 0 ? 1 : -1;
    const s64 remainder = divisor != 0 ? dividend % divisor : dividend;
    setWord(MipsCpu.LO, static_cast<u64>(quotient));
    setWord(MipsCpu.HI, static_cast<u64>(remainder));
}

/// Both results are sign-extended, although they are unsigned. A division by zero gives a quotient of all
/// ones and the dividend as remainder.
inline void DIVU(RegisterFields f) {
    const auto dividend = static_cast<u32>(gpr(f.rs));
    const auto divisor = static_cast<u32>(gpr(f.rt));
    setWord(MipsCpu.LO, divisor != 0 ? dividend / divisor : 0xFFFFFFFF);
    setWord(MipsCpu.HI, divisor != 0 ? dividend % divisor : dividend);
}

inline void MFHI(RegisterFields f) { setDoubleword(f.rd, MipsCpu.HI.low); }

inline void MFLO(RegisterFields f) { setDoubleword(f.rd, MipsCpu.LO.low); }

}  // namespace tarn::r5900
