// Access to the general-purpose registers by instructions.
#pragma once

#include "base/bits.h"
#include "machine/machine.h"
#include "r5900/fields.h"

#include <cstddef>

namespace tarn::r5900 {

/// All 128 bits of a general-purpose register.
inline GuestValue& wholeGpr(Gpr reg) {
    auto* registers = reinterpret_cast<std::byte*>(MipsCpu.GPR.data());
    return *reinterpret_cast<GuestValue*>(registers + reg.doublewords * sizeof(u64));
}

/// The value of a general-purpose register: its low doubleword.
inline u64 gpr(Gpr reg) { return wholeGpr(reg).low; }

/// The low word of a value, as a signed number.
constexpr s32 signedWord(u64 value) { return static_cast<s32>(value); }

/// Writes a 32-bit result, sign-extended to 64 bits. The high doubleword is unchanged.
inline void setWord(GuestValue& destination, u64 result) { destination.low = signExtend32(result); }
inline void setWord(Gpr reg, u64 result) { setWord(wholeGpr(reg), result); }

/// Writes a 64-bit result. The high doubleword is unchanged. r0 is written like any other register.
inline void setDoubleword(GuestValue& destination, u64 result) { destination.low = result; }
inline void setDoubleword(Gpr reg, u64 result) { setDoubleword(wholeGpr(reg), result); }

}  // namespace tarn::r5900
