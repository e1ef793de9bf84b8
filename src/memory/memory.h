// Declares the guest's view of memory: the two access functions, the width codes and the allocation.
#pragma once

#include "base/types.h"

namespace tarn {

/// Access widths as every caller codes them. A read of 4 bytes or less zero-extends to 64 bits.
enum class Width : u8 {
    Quadword = 1,
    Doubleword = 2,
    Word = 4,
    Halfword = 8,
    Byte = 16,
    HighDoubleword = 32,  ///< 8 bytes from or into bits 64-127 of the register
};

/// Stores to the guest address (base + offset), low 32 bits. What cannot be served prints and pauses.
void MipsMemoryWrite(GuestValue value, Width width, u64 base, s32 offset);

/// Loads from the guest address (base + offset), low 32 bits; on failure `destination` stays as it was.
void MipsMemoryRead(GuestValue* destination, Width width, u64 base, s32 offset);

/// Each allocates one area, says so in the EmuOutput pane, and returns 1, or 0 when that failed.
u8 MipsMemoryAlloc();
u8 MipsSpecialAreaMemoryAlloc();
u8 MipsGSAreaMemoryAlloc();
u8 MipsBiosMemoryAlloc();

/// Frees what is allocated of the four areas and says so.
void FreeAllMemory();

}  // namespace tarn
