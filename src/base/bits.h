// Extraction of bit fields, and sign extension.
#pragma once

#include "base/types.h"

namespace tarn {

/// The `count` bits (1 to 32) of `value` from bit `first` up, as an unsigned word.
constexpr u32 bits(u64 value, unsigned first, unsigned count) {
    return static_cast<u32>((value >> first) & ((u64{1} << count) - 1));
}

/// One bit of `value`, 0 or 1.
constexpr u32 bit(u64 value, unsigned position) { return bits(value, position, 1); }

/// Sign extension of the low 8, 16 or 32 bits to a 64-bit pattern.
constexpr u64 signExtend8(u64 value) { return static_cast<u64>(s64{static_cast<s8>(value)}); }
constexpr u64 signExtend16(u64 value) { return static_cast<u64>(s64{static_cast<s16>(value)}); }
constexpr u64 signExtend32(u64 value) { return static_cast<u64>(s64{static_cast<s32>(value)}); }

}  // namespace tarn
