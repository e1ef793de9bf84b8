// Translation of guest addresses to offsets in main memory.
#pragma once

#include "base/types.h"
#include "machine/machine.h"

#include <algorithm>

namespace tarn {

/// Loads and stores differ: the BIOS image hides the top of the cached kernel segment from loads only.
enum class Access : u8 { Load, Store };

/// The first mapped address of main memory. Neither the first megabyte nor the last byte is mapped.
inline constexpr u32 mainMemoryFirst = 0x00100000;

/// Means "no offset". A plain word, because std::optional costs a store to the stack on this path.
inline constexpr u32 notMainMemory = 0xFFFFFFFF;

/// Folds the cached kernel segment, 0x80000000-0x9FFFFFFE, onto physical memory. Leaves other addresses as
/// they are.
constexpr u32 foldKernelSegment(u32 address) {
    return address - 0x80000000 <= 0x1FFFFFFE ? address & (mainMemorySize - 1) : address;
}

/// Whether `bytes` from a physical address on are mapped main memory. The access must not start at the last
/// byte, nor end beyond the buffer: one comparison tests both.
constexpr bool inMainMemory(u32 physical, u32 bytes) {
    return physical - mainMemoryFirst <= mainMemorySize - mainMemoryFirst - std::max(bytes, 2U);
}

/// Whether a load from `address` reads the BIOS image, through one of its three views.
constexpr bool isBios(u32 address) {
    constexpr u32 last = biosMemorySize - 2;
    return address - 0x1FC00000 <= last || address - 0x9FC00000 <= last || address - 0xBFC00000 <= last;
}

/// The rarer views of main memory: the uncached mirrors and the repetitions of the kernel segment.
template <Access access>
constexpr u32 mirroredMainMemoryOffset(u32 address, u32 bytes) {
    if (access == Access::Load && isBios(address)) {
        return notMainMemory;
    }
    const u32 folded = foldKernelSegment(address);
    const u32 physical = folded & (mainMemorySize - 1);
    const u32 view = folded - physical;
    if ((view == 0 || view == 0x20000000 || view == 0x30000000) && inMainMemory(physical, bytes)) {
        return physical;
    }
    return notMainMemory;
}

/// The offset of an address in the first view or its kernel alias, where programs and their stacks are.
constexpr u32 usualOffset(u32 address) { return address & 0x7FFFFFFF; }

/// The offset in MipsMemory of an access to `bytes` bytes at a guest address, or notMainMemory if it is not
/// entirely there. The usual views take one comparison.
template <Access access>
constexpr u32 mainMemoryOffset(u32 address, u32 bytes) {
    const u32 physical = usualOffset(address);
    if (inMainMemory(physical, bytes)) [[likely]] {
        return physical;
    }
    return mirroredMainMemoryOffset<access>(address, bytes);
}

}  // namespace tarn
