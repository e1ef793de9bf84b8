// Access to the general-purpose registers by instructions.
#pragma once

#include "base/bits.h"
#include "machine/machine.h"
#include "r5900/fields.h"

#include <cstddef>
#include <type_traits>

namespace tarn::r5900 {

/// All 128 bits of a general-purpose register. The offset is in bytes because `GPR[number]` would cost a
/// shift.
template <typename Cpu>
auto& wholeGpr(Cpu& cpu, Gpr reg) {
    using Value = std::remove_pointer_t<decltype(cpu.GPR.data())>;
    using Byte = std::conditional_t<std::is_const_v<Value>, const std::byte, std::byte>;
    return *reinterpret_cast<Value*>(reinterpret_cast<Byte*>(cpu.GPR.data()) + reg.doublewords * sizeof(u64));
}
inline GuestValue& wholeGpr(Gpr reg) { return wholeGpr(MipsCpu, reg); }

/// The value of a general-purpose register: its low doubleword.
inline u64 gpr(const MipsCpuRecord& cpu, Gpr reg) { return wholeGpr(cpu, reg).low; }
inline u64 gpr(Gpr reg) { return gpr(MipsCpu, reg); }

/// The low word of a value, as a signed number.
constexpr s32 signedWord(u64 value) { return static_cast<s32>(value); }

/// Writes a 32-bit result, sign-extended to 64 bits. The high doubleword is unchanged.
inline void setWord(GuestValue& destination, u64 result) { destination.low = signExtend32(result); }
inline void setWord(Gpr reg, u64 result) { setWord(wholeGpr(reg), result); }

/// Writes a 64-bit result. The high doubleword is unchanged. r0 is written like any other register.
inline void setDoubleword(GuestValue& destination, u64 result) { destination.low = result; }
inline void setDoubleword(Gpr reg, u64 result) { setDoubleword(wholeGpr(reg), result); }

}  // namespace tarn::r5900
