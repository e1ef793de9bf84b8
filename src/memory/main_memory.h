// Translation of guest addresses to offsets in main memory.
#pragma once

#include "base/types.h"
#include "machine/machine.h"

#include <algorithm>

namespace tarn {

/// What an access does: the BIOS image hides the top of the cached kernel segment from loads only.
enum class Access : u8 { Load, Store };

/// Where main memory begins for the guest: the first megabyte is not mapped. Neither is the last byte.
inline constexpr u32 mainMemoryFirst = 0x00100000;

/// Stands for "no offset"; a plain word, because an optional costs a store to the stack on this path.
inline constexpr u32 notMainMemory = 0xFFFFFFFF;

/// The cached kernel segment, 0x80000000-0x9FFFFFFE, folded onto physical memory; other addresses as they
/// are.
constexpr u32 foldKernelSegment(u32 address) {
    return address - 0x80000000 <= 0x1FFFFFFE ? address & (mainMemorySize - 1) : address;
}

/// Whether `bytes` from a physical address on are mapped main memory. The start must not be the last byte,
/// and the end not beyond the buffer: one comparison does for both.
constexpr bool inMainMemory(u32 physical, u32 bytes) {
    return physical - mainMemoryFirst <= mainMemorySize - mainMemoryFirst - std::max(bytes, 2U);
}

/// Whether a load finds the BIOS image at `address`, in one of its three views.
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

/// The offset that an address of the first view or of its kernel alias has. Programs and their stacks live
/// there.
constexpr u32 usualOffset(u32 address) { return address & 0x7FFFFFFF; }

/// Offset in MipsMemory of an access of `bytes` bytes at a guest address, or notMainMemory when it does not
/// lie wholly there. The usual views take one comparison.
template <Access access>
constexpr u32 mainMemoryOffset(u32 address, u32 bytes) {
    const u32 physical = usualOffset(address);
    if (inMainMemory(physical, bytes)) [[likely]] {
        return physical;
    }
    return mirroredMainMemoryOffset<access>(address, bytes);
}

}  // namespace tarn
