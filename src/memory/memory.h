// The two access functions that every load and store goes through, with the path to main memory inline.
#pragma once

#include "base/types.h"
#include "machine/machine.h"
#include "memory/main_memory.h"
#include "memory/width.h"
#include "memory/width_helpers.h"

namespace tarn {

/// The 32 bits of (base + offset) that the memory map looks at.
constexpr u32 guestAddress(u64 base, s32 offset) {
    return static_cast<u32>(base + static_cast<u64>(s64{offset}));
}

/// Accesses outside main memory: devices, the BIOS image, and what is refused.
void writeOutsideMainMemory(GuestValue value, Width width, u64 base, s32 offset);
void readOutsideMainMemory(GuestValue* destination, Width width, u64 base, s32 offset);

/// Stores to the guest address (base + offset), low 32 bits. What cannot be served prints and pauses.
inline void MipsMemoryWrite(GuestValue value, Width width, u64 base, s32 offset) {
    const u32 at = mainMemoryOffset<Access::Store>(guestAddress(base, offset), bytesOf(width));
    if (at != notMainMemory && MipsMemory != nullptr && writeWidth(MipsMemory, at, value, width)) [[likely]] {
        return;
    }
    writeOutsideMainMemory(value, width, base, offset);
}

/// Loads from the guest address (base + offset), low 32 bits; on failure `destination` stays as it was.
inline void MipsMemoryRead(GuestValue* destination, Width width, u64 base, s32 offset) {
    const u32 at = mainMemoryOffset<Access::Load>(guestAddress(base, offset), bytesOf(width));
    if (at != notMainMemory && MipsMemory != nullptr && readWidth(destination, MipsMemory, at, width))
        [[likely]] {
        return;
    }
    readOutsideMainMemory(destination, width, base, offset);
}

}  // namespace tarn
