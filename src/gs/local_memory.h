// Owns the addressing of local memory: one rule, every index wraps at the 4 MB.
#pragma once

#include "gs/gs_state.h"

namespace tarn {

/// The word at `index`, taken modulo the size of local memory.
inline u32& localWord(u32 index) { return Gs.vRamUL[index & (localMemoryWords - 1)]; }

/// The byte at `index`, taken modulo the size of local memory.
inline u8& localByte(u32 index) { return Gs.vRam[index & (localMemoryBytes - 1)]; }

}  // namespace tarn
