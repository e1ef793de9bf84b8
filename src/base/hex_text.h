// Hexadecimal numbers as text, without printf.
#pragma once

#include "base/types.h"

#include <bit>

namespace tarn {

inline constexpr std::size_t mostHexDigits = 16;  ///< of a u64

/// The number of digits without leading zeros; 0 has one.
constexpr unsigned hexDigitCount(u64 value) {
    return (static_cast<unsigned>(std::bit_width(value | 1)) + 3) / 4;
}

/// Writes the lowest `count` digits. Returns the end.
constexpr char* writeHexDigits(char* at, u64 value, unsigned count) {
    for (unsigned left = count; left-- > 0; value >>= 4) {
        at[left] = "0123456789abcdef"[value & 15];
    }
    return at + count;
}

/// Writes a number like %llx, padded on the left to `width` characters. Returns the end.
constexpr char* writeHex(char* at, u64 value, unsigned width = 1, char filling = '0') {
    const unsigned count = hexDigitCount(value);
    for (; width > count; --width) {
        *at++ = filling;
    }
    return writeHexDigits(at, value, count);
}

}  // namespace tarn
