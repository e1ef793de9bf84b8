// Fixed-width type names and the 128-bit guest value.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = unsigned long long;  // the type of %llx, which the diagnostics use throughout
using s8 = std::int8_t;
using s16 = std::int16_t;
using s32 = std::int32_t;
using s64 = long long;
using f32 = float;

static_assert(sizeof(u64) == 8 && sizeof(s64) == 8);

/// A quadword as the R5900 holds it: a register of 128 bits or 16 bytes of guest memory, little-endian.
struct alignas(16) GuestValue {
    u64 low = 0;   ///< bits 0-63
    u64 high = 0;  ///< bits 64-127

    friend constexpr bool operator==(const GuestValue&, const GuestValue&) = default;
};

}  // namespace tarn
