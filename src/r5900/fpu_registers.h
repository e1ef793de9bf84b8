// The two views of the floating-point registers, bit image and value, and how they are kept consistent; the
// condition bit.
#pragma once

#include "machine/machine.h"

namespace tarn::r5900 {

/// Writes the bit image of a register and updates its value.
inline void setFromImage(u8 number, u64 image) {
    MipsCpu.FPR128[number].low = image;
    MipsCpu.FPR32[number] = MipsCpu.FPR128Ptr(number);
}

/// Writes the value of a register and updates its bit image.
inline void setValue(u8 number, f32 value) {
    MipsCpu.FPR32[number] = value;
    MipsCpu.FPR128[number].low = MipsCpu.FPR32Ptr(number);
}

/// The result of the last comparison: bit 23 of FCR31.
inline constexpr u64 conditionMask = u64{1} << 23;

inline bool conditionBit(const MipsCpuRecord& cpu) { return (cpu.FCR[31] & conditionMask) != 0; }

inline void setConditionBit(bool holds) {
    MipsCpu.FCR[31] = holds ? MipsCpu.FCR[31] | conditionMask : MipsCpu.FCR[31] & ~conditionMask;
}

}  // namespace tarn::r5900
