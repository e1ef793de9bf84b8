// Accesses to the areas other than main memory.
#pragma once

#include "base/types.h"
#include "memory/width.h"

namespace tarn {

// Each takes the area's buffer, and the address as the dispatcher received it. A width that the area does not
// support, or an access that would end outside the buffer, prints a message to standard output and pauses.

/// PC of the instruction that last wrote to a DMA register. For observers only: nothing in the machine reads
/// it.
inline u64 dmaWritePc = 0;

/// Doublewords and words. Accesses to DMA registers are recorded in Ps2Bios, refused ones included.
void MipsSpecialMemWrite(u8* area, GuestValue value, Width width, u64 base, s32 offset);
void MipsSpecialMemRead(const u8* area, GuestValue* destination, Width width, u64 base, s32 offset);

/// Doublewords and words. Accesses the renderer's registers; the buffer is not used.
void MipsGSAreaMemWrite(u8* area, GuestValue value, Width width, u64 base, s32 offset);
void MipsGSAreaMemRead(const u8* area, GuestValue* destination, Width width, u64 base, s32 offset);

/// Words and bytes.
void MipsBiosAreaMemRead(const u8* area, GuestValue* destination, Width width, u64 base, s32 offset);

}  // namespace tarn
