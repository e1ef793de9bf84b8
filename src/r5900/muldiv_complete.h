// The complete processor's scalar multiplications and divisions, in both pipelines.
//
// LO1 and HI1, of the second pipeline, are the upper halves of the registers. All results are sign-extended
// words, even those of unsigned operations.
#pragma once

#include "r5900/gpr.h"

#include <type_traits>

namespace tarn::r5900 {

/// The halves of LO and HI that a pipeline uses.
struct FirstPipeline {
    static u64& lo() { return MipsCpu.LO.low; }
    static u64& hi() { return MipsCpu.HI.low; }
};
struct SecondPipeline {
    static u64& lo() { return MipsCpu.LO.high; }
    static u64& hi() { return MipsCpu.HI.high; }
};

template <typename Pipeline>
inline void setHiLo(u64 lo, u64 hi) {
    Pipeline::lo() = signExtend32(lo);
    Pipeline::hi() = signExtend32(hi);
}

/// The 64-bit number in the low words of HI and LO.
template <typename Pipeline>
inline u64 accumulated() {
    return Pipeline::hi() << 32 | static_cast<u32>(Pipeline::lo());
}

/// The 64-bit product of two words.
template <typename Word>
constexpr u64 wordProduct(u64 left, u64 right) {
    using Product = std::conditional_t<std::is_signed_v<Word>, s64, u64>;
    return static_cast<u64>(Product{static_cast<Word>(left)} * static_cast<Word>(right));
}

/// Writes 64 bits to HI and LO, and LO to rd.
template <typename Pipeline>
inline void setProduct(Gpr rd, u64 product) {
    setHiLo<Pipeline>(product, product >> 32);
    setDoubleword(rd, Pipeline::lo());
}

template <typename Pipeline, typename Word>
inline void multiply(RegisterFields f) {
    setProduct<Pipeline>(f.rd, wordProduct<Word>(gpr(f.rs), gpr(f.rt)));
}
template <typename Pipeline, typename Word>
inline void multiplyAdd(RegisterFields f) {
    setProduct<Pipeline>(f.rd, accumulated<Pipeline>() + wordProduct<Word>(gpr(f.rs), gpr(f.rt)));
}

inline void MULT_complete(RegisterFields f) { multiply<FirstPipeline, s32>(f); }
inline void MULTU(RegisterFields f) { multiply<FirstPipeline, u32>(f); }
inline void MULT1_complete(RegisterFields f) { multiply<SecondPipeline, s32>(f); }
inline void MULTU1(RegisterFields f) { multiply<SecondPipeline, u32>(f); }

inline void MADD(RegisterFields f) { multiplyAdd<FirstPipeline, s32>(f); }
inline void MADDU(RegisterFields f) { multiplyAdd<FirstPipeline, u32>(f); }
inline void MADD1(RegisterFields f) { multiplyAdd<SecondPipeline, s32>(f); }
inline void MADDU1(RegisterFields f) { multiplyAdd<SecondPipeline, u32>(f); }

struct Division {
    u64 quotient, remainder;
};

/// A division by zero gives the dividend as remainder, and as quotient 1 for a negative dividend, otherwise
/// all ones. The only quotient that overflows, -2^31 / -1, wraps.
template <typename Word>
constexpr Division divided(Word dividend, Word divisor) {
    const auto wide = [](Word value) { return static_cast<u64>(s64{static_cast<s32>(value)}); };
    if (divisor == 0) {
        return {std::is_signed_v<Word> && dividend >> 31 != 0 ? 1 : ~u64{0}, wide(dividend)};
    }
    if (std::is_signed_v<Word> && divisor == static_cast<Word>(-1)) {
        return {0 - wide(dividend), 0};
    }
    return {wide(dividend / divisor), wide(dividend % divisor)};
}

template <typename Pipeline, typename Word>
inline void divide(RegisterFields f) {
    const auto [quotient, remainder] = divided(static_cast<Word>(gpr(f.rs)), static_cast<Word>(gpr(f.rt)));
    setHiLo<Pipeline>(quotient, remainder);
}

inline void DIV1(RegisterFields f) { divide<SecondPipeline, s32>(f); }
inline void DIVU1(RegisterFields f) { divide<SecondPipeline, u32>(f); }

inline void MFHI1(RegisterFields f) { setDoubleword(f.rd, MipsCpu.HI.high); }
inline void MFLO1(RegisterFields f) { setDoubleword(f.rd, MipsCpu.LO.high); }
inline void MTHI(RegisterFields f) { MipsCpu.HI.low = gpr(f.rs); }
inline void MTLO(RegisterFields f) { MipsCpu.LO.low = gpr(f.rs); }
inline void MTHI1(RegisterFields f) { MipsCpu.HI.high = gpr(f.rs); }
inline void MTLO1(RegisterFields f) { MipsCpu.LO.high = gpr(f.rs); }

}  // namespace tarn::r5900
