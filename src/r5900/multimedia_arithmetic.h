// Parallel instructions that compute each lane from the same lanes of their operands: sums, differences,
// comparisons, logic and shifts.
#pragma once

#include "r5900/lanes.h"

#include <type_traits>

namespace tarn::r5900 {

// Sums and differences that wrap.

template <typename Lane>
inline void addLanes(RegisterFields f) {
    lanewise<Lane>(f, [](auto left, auto right) { return left + right; });
}
template <typename Lane>
inline void subtractLanes(RegisterFields f) {
    lanewise<Lane>(f, [](auto left, auto right) { return left - right; });
}

inline void PADDB(RegisterFields f) { addLanes<u8>(f); }
inline void PADDH(RegisterFields f) { addLanes<u16>(f); }
inline void PADDW(RegisterFields f) { addLanes<u32>(f); }
inline void PSUBB(RegisterFields f) { subtractLanes<u8>(f); }
inline void PSUBH(RegisterFields f) { subtractLanes<u16>(f); }
inline void PSUBW(RegisterFields f) { subtractLanes<u32>(f); }

/// Differences in the lower four halfwords, sums in the upper four.
inline void PADSBH(RegisterFields f) {
    auto left = lanesOf<u16>(f.rs);
    const auto right = lanesOf<u16>(f.rt);
    for (std::size_t i = 0; i < left.size(); ++i) {
        left[i] = static_cast<u16>(i < 4 ? left[i] - right[i] : left[i] + right[i]);
    }
    setLanes(f.rd, left);
}

// Sums and differences that saturate, of signed and of unsigned lanes.

/// A type in which sums and differences of two lanes do not overflow.
template <typename Lane>
using Exact = std::conditional_t<sizeof(Lane) < 4, s32, s64>;

template <typename Lane>
inline void addSaturated(RegisterFields f) {
    lanewise<Lane>(f, [](Exact<Lane> left, Exact<Lane> right) { return saturated<Lane>(left + right); });
}
template <typename Lane>
inline void subtractSaturated(RegisterFields f) {
    lanewise<Lane>(f, [](Exact<Lane> left, Exact<Lane> right) { return saturated<Lane>(left - right); });
}

inline void PADDSB(RegisterFields f) { addSaturated<s8>(f); }
inline void PADDSH(RegisterFields f) { addSaturated<s16>(f); }
inline void PADDSW(RegisterFields f) { addSaturated<s32>(f); }
inline void PSUBSB(RegisterFields f) { subtractSaturated<s8>(f); }
inline void PSUBSH(RegisterFields f) { subtractSaturated<s16>(f); }
inline void PSUBSW(RegisterFields f) { subtractSaturated<s32>(f); }

inline void PADDUB(RegisterFields f) { addSaturated<u8>(f); }
inline void PADDUH(RegisterFields f) { addSaturated<u16>(f); }
inline void PADDUW(RegisterFields f) { addSaturated<u32>(f); }
inline void PSUBUB(RegisterFields f) { subtractSaturated<u8>(f); }
inline void PSUBUH(RegisterFields f) { subtractSaturated<u16>(f); }
inline void PSUBUW(RegisterFields f) { subtractSaturated<u32>(f); }

// Absolute values, minima and maxima, of signed lanes.

/// The most negative value saturates.
template <typename Lane>
inline void absoluteLanes(RegisterFields f) {
    lanewiseUnary<Lane>(f, [](Exact<Lane> value) { return saturated<Lane>(value < 0 ? -value : value); });
}

inline void PABSH(RegisterFields f) { absoluteLanes<s16>(f); }
inline void PABSW(RegisterFields f) { absoluteLanes<s32>(f); }

template <typename Lane>
inline void greaterLanes(RegisterFields f) {
    lanewise<Lane>(f, [](Lane left, Lane right) { return std::max(left, right); });
}
template <typename Lane>
inline void smallerLanes(RegisterFields f) {
    lanewise<Lane>(f, [](Lane left, Lane right) { return std::min(left, right); });
}

inline void PMAXH(RegisterFields f) { greaterLanes<s16>(f); }
inline void PMAXW(RegisterFields f) { greaterLanes<s32>(f); }
inline void PMINH(RegisterFields f) { smallerLanes<s16>(f); }
inline void PMINW(RegisterFields f) { smallerLanes<s32>(f); }

// Comparisons: all ones if true, otherwise 0.

template <typename Lane>
inline void compareGreater(RegisterFields f) {
    lanewise<Lane>(f, [](Lane left, Lane right) { return left > right ? -1 : 0; });
}
template <typename Lane>
inline void compareEqual(RegisterFields f) {
    lanewise<Lane>(f, [](Lane left, Lane right) { return left == right ? -1 : 0; });
}

inline void PCGTB(RegisterFields f) { compareGreater<s8>(f); }
inline void PCGTH(RegisterFields f) { compareGreater<s16>(f); }
inline void PCGTW(RegisterFields f) { compareGreater<s32>(f); }
inline void PCEQB(RegisterFields f) { compareEqual<s8>(f); }
inline void PCEQH(RegisterFields f) { compareEqual<s16>(f); }
inline void PCEQW(RegisterFields f) { compareEqual<s32>(f); }

// Logic.

inline void PAND(RegisterFields f) {
    lanewise<u64>(f, [](u64 left, u64 right) { return left & right; });
}
inline void POR(RegisterFields f) {
    lanewise<u64>(f, [](u64 left, u64 right) { return left | right; });
}
inline void PXOR(RegisterFields f) {
    lanewise<u64>(f, [](u64 left, u64 right) { return left ^ right; });
}
inline void PNOR(RegisterFields f) {
    lanewise<u64>(f, [](u64 left, u64 right) { return ~(left | right); });
}

// Shifts by an immediate amount, of which halfwords use the low four bits.

template <typename Lane>
constexpr unsigned laneShift(ShiftFields f) {
    return f.sa & (sizeof(Lane) * 8 - 1);
}

template <typename Lane>
inline void shiftLanesLeft(ShiftFields f) {
    lanewiseUnary<Lane>(f, [amount = laneShift<Lane>(f)](u32 value) { return value << amount; });
}
template <typename Lane>
inline void shiftLanesRight(ShiftFields f) {
    lanewiseUnary<Lane>(f, [amount = laneShift<Lane>(f)](Lane value) { return value >> amount; });
}

inline void PSLLH(ShiftFields f) { shiftLanesLeft<u16>(f); }
inline void PSLLW(ShiftFields f) { shiftLanesLeft<u32>(f); }
inline void PSRLH(ShiftFields f) { shiftLanesRight<u16>(f); }
inline void PSRLW(ShiftFields f) { shiftLanesRight<u32>(f); }
inline void PSRAH(ShiftFields f) { shiftLanesRight<s16>(f); }
inline void PSRAW(ShiftFields f) { shiftLanesRight<s32>(f); }

// Variable shifts of the lower word of each doubleword of rt, by the lower word of that of rs. The result is
// sign-extended to the doubleword.

template <typename Word, typename Operation>
inline void shiftEvenWords(RegisterFields f, Operation operation) {
    const auto values = lanesOf<u32>(f.rt);
    const auto amounts = lanesOf<u32>(f.rs);
    Lanes<u64> results;
    for (std::size_t i = 0; i < results.size(); ++i) {
        const auto value = static_cast<Word>(values[i * 2]);
        results[i] = signExtend32(static_cast<u32>(operation(value, bits(amounts[i * 2], 0, 5))));
    }
    setLanes(f.rd, results);
}

inline void PSLLVW(RegisterFields f) {
    shiftEvenWords<u32>(f, [](u32 value, unsigned amount) { return value << amount; });
}
inline void PSRLVW(RegisterFields f) {
    shiftEvenWords<u32>(f, [](u32 value, unsigned amount) { return value >> amount; });
}
inline void PSRAVW(RegisterFields f) {
    shiftEvenWords<s32>(f, [](s32 value, unsigned amount) { return value >> amount; });
}

}  // namespace tarn::r5900
