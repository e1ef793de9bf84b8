// The two functions that all loads and stores call, with the path to main memory inline.
#pragma once

#include "base/types.h"
#include "machine/machine.h"
#include "memory/main_memory.h"
#include "memory/width.h"
#include "memory/width_helpers.h"

namespace tarn {

/// The low 32 bits of (base + offset), which the memory map uses.
constexpr u32 guestAddress(u64 base, s32 offset) {
    return static_cast<u32>(base + static_cast<u64>(s64{offset}));
}

/// Accesses outside main memory: devices, the BIOS image, and unmapped addresses.
void writeOutsideMainMemory(GuestValue value, Width width, u64 base, s32 offset);
void readOutsideMainMemory(GuestValue* destination, Width width, u64 base, s32 offset);

/// Stores to the guest address (base + offset), low 32 bits. On failure prints a message and pauses.
inline void MipsMemoryWrite(GuestValue value, Width width, u64 base, s32 offset) {
    const u32 at = mainMemoryOffset<Access::Store>(guestAddress(base, offset), bytesOf(width));
    if (at != notMainMemory && MipsMemory != nullptr && writeWidth(MipsMemory, at, value, width)) [[likely]] {
        return;
    }
    writeOutsideMainMemory(value, width, base, offset);
}

/// Loads from the guest address (base + offset), low 32 bits. On failure prints a message, pauses, and leaves
/// `destination` unchanged.
inline void MipsMemoryRead(GuestValue* destination, Width width, u64 base, s32 offset) {
    const u32 at = mainMemoryOffset<Access::Load>(guestAddress(base, offset), bytesOf(width));
    if (at != notMainMemory && MipsMemory != nullptr && readWidth(destination, MipsMemory, at, width))
        [[likely]] {
        return;
    }
    readOutsideMainMemory(destination, width, base, offset);
}

}  // namespace tarn
