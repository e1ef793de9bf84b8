// Owns the way in which instructions read and write the general-purpose registers.
#pragma once

#include "base/bits.h"
#include "r5900/mips_cpu.h"

namespace tarn::r5900 {

/// The value of general-purpose register `number`: its low doubleword.
inline u64 gpr(u8 number) { return MipsCpu.GPR[number].low; }

/// The low word of a value, as a signed number.
constexpr s32 signedWord(u64 value) { return static_cast<s32>(value); }

/// Writes a 32-bit result: bit 31 is copied into bits 32-63. The high doubleword stays as it is.
inline void setWord(GuestValue& destination, u64 result) { destination.low = signExtend32(result); }
inline void setWord(u8 number, u64 result) { setWord(MipsCpu.GPR[number], result); }

/// Writes a 64-bit result. The high doubleword stays as it is. r0 is written like any other register.
inline void setDoubleword(GuestValue& destination, u64 result) { destination.low = result; }
inline void setDoubleword(u8 number, u64 result) { setDoubleword(MipsCpu.GPR[number], result); }

}  // namespace tarn::r5900
