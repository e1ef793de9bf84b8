// 128-bit registers as vectors of lanes, and helpers that compute lane by lane.
#pragma once

#include "r5900/gpr.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace tarn::r5900 {

/// A quadword as lanes of one type; lane 0 is the least significant.
template <typename Lane>
using Lanes = std::array<Lane, 16 / sizeof(Lane)>;

template <typename Lane>
constexpr Lanes<Lane> lanesOf(const GuestValue& value) {
    return std::bit_cast<Lanes<Lane>>(value);
}
template <typename Lane>
inline Lanes<Lane> lanesOf(Gpr reg) {
    return lanesOf<Lane>(wholeGpr(reg));
}

template <typename Lane>
inline void setLanes(Gpr reg, const Lanes<Lane>& lanes) {
    wholeGpr(reg) = std::bit_cast<GuestValue>(lanes);
}

/// rd from rs and rt, lane by lane. The lanes are widened to int as operands are.
template <typename Lane, typename Operation>
inline void lanewise(RegisterFields f, Operation operation) {
    auto left = lanesOf<Lane>(f.rs);
    const auto right = lanesOf<Lane>(f.rt);
    for (std::size_t i = 0; i < left.size(); ++i) {
        left[i] = static_cast<Lane>(operation(left[i], right[i]));
    }
    setLanes(f.rd, left);
}

/// rd from rt alone, lane by lane.
template <typename Lane, typename Fields, typename Operation>
inline void lanewiseUnary(Fields f, Operation operation) {
    auto lanes = lanesOf<Lane>(f.rt);
    for (Lane& lane : lanes) {
        lane = static_cast<Lane>(operation(lane));
    }
    setLanes(f.rd, lanes);
}

/// Saturates to the range of a lane.
template <typename Lane, typename Wide>
constexpr Lane saturated(Wide value) {
    using Limits = std::numeric_limits<Lane>;
    return static_cast<Lane>(std::clamp(value, Wide{Limits::min()}, Wide{Limits::max()}));
}

}  // namespace tarn::r5900
