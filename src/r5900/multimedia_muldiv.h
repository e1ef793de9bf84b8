// Parallel multiplications and divisions, and the moves between HI, LO and the registers.
#pragma once

#include "r5900/muldiv_complete.h"
#include "r5900/multimedia_shuffle.h"

namespace tarn::r5900 {

inline Lanes<u32> loWords() { return lanesOf<u32>(MipsCpu.LO); }
inline Lanes<u32> hiWords() { return lanesOf<u32>(MipsCpu.HI); }

inline void setHiLo(const Lanes<u32>& lo, const Lanes<u32>& hi) {
    MipsCpu.LO = std::bit_cast<GuestValue>(lo);
    MipsCpu.HI = std::bit_cast<GuestValue>(hi);
}

/// The even words of LO and HI, interleaved: what rd gets from all products.
inline GuestValue evenWords() { return picked<u32, 0, 4, 2, 6>(MipsCpu.LO, MipsCpu.HI); }

// Words: the lower one of each doubleword; the product goes to the same doubleword of HI and LO.

template <typename Word, typename Combine>
inline void multiplyWords(RegisterFields f, Combine combine) {
    const GuestValue left = wholeGpr(f.rs);
    const GuestValue right = wholeGpr(f.rt);
    const u64 low = combine(accumulated<FirstPipeline>(), wordProduct<Word>(left.low, right.low));
    const u64 high = combine(accumulated<SecondPipeline>(), wordProduct<Word>(left.high, right.high));
    setHiLo<FirstPipeline>(low, low >> 32);
    setHiLo<SecondPipeline>(high, high >> 32);
    wholeGpr(f.rd) = evenWords();
}

// How a product is combined with the old contents of HI and LO.
inline constexpr auto productOnly = [](auto, auto product) { return product; };
inline constexpr auto sumWithProduct = [](auto sum, auto product) { return sum + product; };
inline constexpr auto differenceFromProduct = [](auto sum, auto product) { return sum - product; };

inline void PMULTW(RegisterFields f) { multiplyWords<s32>(f, productOnly); }
inline void PMULTUW(RegisterFields f) { multiplyWords<u32>(f, productOnly); }
inline void PMADDW(RegisterFields f) { multiplyWords<s32>(f, sumWithProduct); }
inline void PMADDUW(RegisterFields f) { multiplyWords<u32>(f, sumWithProduct); }
inline void PMSUBW(RegisterFields f) { multiplyWords<s32>(f, differenceFromProduct); }

// Halfwords: eight products.

inline std::array<u32, 8> halfwordProducts(RegisterFields f) {
    const auto left = lanesOf<s16>(f.rs);
    const auto right = lanesOf<s16>(f.rt);
    std::array<u32, 8> products;
    for (std::size_t i = 0; i < products.size(); ++i) {
        products[i] = static_cast<u32>(left[i] * right[i]);
    }
    return products;
}

/// Products 0, 1, 4 and 5 go to the words of LO, the others to those of HI.
template <typename Combine>
inline void multiplyHalfwords(RegisterFields f, Combine combine) {
    const auto products = halfwordProducts(f);
    auto lo = loWords();
    auto hi = hiWords();
    for (std::size_t i = 0; i < lo.size(); ++i) {
        const std::size_t product = i < 2 ? i : i + 2;
        lo[i] = combine(lo[i], products[product]);
        hi[i] = combine(hi[i], products[product + 2]);
    }
    setHiLo(lo, hi);
    wholeGpr(f.rd) = evenWords();
}

inline void PMULTH(RegisterFields f) { multiplyHalfwords(f, productOnly); }
inline void PMADDH(RegisterFields f) { multiplyHalfwords(f, sumWithProduct); }
inline void PMSUBH(RegisterFields f) { multiplyHalfwords(f, differenceFromProduct); }

/// Combines two neighbouring products into one word. The odd words of HI and LO are unchanged.
template <typename Combine>
inline void combineNeighbours(RegisterFields f, Combine combine) {
    const auto products = halfwordProducts(f);
    auto lo = loWords();
    auto hi = hiWords();
    for (std::size_t i = 0; i < lo.size(); i += 2) {
        lo[i] = combine(products[i * 2 + 1], products[i * 2]);
        hi[i] = combine(products[i * 2 + 3], products[i * 2 + 2]);
    }
    setHiLo(lo, hi);
    wholeGpr(f.rd) = evenWords();
}

inline void PHMADH(RegisterFields f) { combineNeighbours(f, sumWithProduct); }
inline void PHMSBH(RegisterFields f) { combineNeighbours(f, differenceFromProduct); }

// Divisions.

template <typename Word>
inline void divideWords(RegisterFields f) {
    divide<FirstPipeline, Word>(f);
    const auto upper = [](Gpr reg) { return static_cast<Word>(wholeGpr(reg).high); };
    const auto [quotient, remainder] = divided(upper(f.rs), upper(f.rt));
    setHiLo<SecondPipeline>(quotient, remainder);
}

inline void PDIVW(RegisterFields f) { divideWords<s32>(f); }
inline void PDIVUW(RegisterFields f) { divideWords<u32>(f); }

/// Divides each word of rs by the lowest halfword of rt.
inline void PDIVBW(RegisterFields f) {
    const auto dividends = lanesOf<s32>(f.rs);
    const auto divisor = static_cast<s16>(gpr(f.rt));
    Lanes<u32> lo;
    Lanes<u32> hi;
    for (std::size_t i = 0; i < lo.size(); ++i) {
        const auto [quotient, remainder] = divided(dividends[i], s32{divisor});
        lo[i] = static_cast<u32>(quotient);
        hi[i] = static_cast<u32>(remainder);
    }
    setHiLo(lo, hi);
}

// Moves of whole registers.

inline void PMFHI(RegisterFields f) { wholeGpr(f.rd) = MipsCpu.HI; }
inline void PMFLO(RegisterFields f) { wholeGpr(f.rd) = MipsCpu.LO; }
inline void PMTHI(RegisterFields f) { MipsCpu.HI = wholeGpr(f.rs); }
inline void PMTLO(RegisterFields f) { MipsCpu.LO = wholeGpr(f.rs); }

// Moves from lanes of HI and LO: even words, odd words, even halfwords, or saturated numbers.

inline void PMFHL_LW(RegisterFields f) { wholeGpr(f.rd) = evenWords(); }
inline void PMFHL_UW(RegisterFields f) { wholeGpr(f.rd) = picked<u32, 1, 5, 3, 7>(MipsCpu.LO, MipsCpu.HI); }
inline void PMFHL_LH(RegisterFields f) {
    wholeGpr(f.rd) = picked<u16, 0, 2, 8, 10, 4, 6, 12, 14>(MipsCpu.LO, MipsCpu.HI);
}

/// Each 64-bit number in HI and LO, saturated to a word and sign-extended.
inline void PMFHL_SLW(RegisterFields f) {
    const auto word = [](u64 number) {
        return static_cast<u64>(s64{saturated<s32>(static_cast<s64>(number))});
    };
    wholeGpr(f.rd) = {word(accumulated<FirstPipeline>()), word(accumulated<SecondPipeline>())};
}

/// All words, saturated to halfwords.
inline void PMFHL_SH(RegisterFields f) {
    const auto lo = lanesOf<s32>(MipsCpu.LO);
    const auto hi = lanesOf<s32>(MipsCpu.HI);
    Lanes<s16> results;
    for (std::size_t i = 0; i < lo.size(); ++i) {
        const std::size_t to = i < 2 ? i : i + 2;
        results[to] = saturated<s16>(lo[i]);
        results[to + 2] = saturated<s16>(hi[i]);
    }
    setLanes(f.rd, results);
}

/// The words of rs go alternately to the even words of LO and HI. The odd words are unchanged.
inline void PMTHL_LW(RegisterFields f) {
    const GuestValue& words = wholeGpr(f.rs);
    MipsCpu.LO = picked<u32, 4, 1, 6, 3>(MipsCpu.LO, words);
    MipsCpu.HI = picked<u32, 5, 1, 7, 3>(MipsCpu.HI, words);
}

}  // namespace tarn::r5900
