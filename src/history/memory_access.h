// The load or store that the next driver step will make.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"

#include <optional>

namespace tarn::history {

struct MemoryAccess {
    u32 address = 0;
    u32 length = 0;  ///< in bytes
    Access kind = Access::Load;
};

/// The load or store that the next driver step of a machine with this CPU makes.
///
/// A step executes at most one: a taken branch or a jump runs its delay slot inside the same step, so the
/// slot is looked at in its place. What system calls and the DMA controller do to memory is not foreseen.
std::optional<MemoryAccess> nextMemoryAccess(const MipsCpuRecord& cpu);

/// Where a load from `address`, or a store to it, ends up: the same for all views of one byte of the machine.
u32 placeOf(u32 address, Access access);

/// The aligned word that a byte lies in. The areas begin and end on words, and the memory map, which tests
/// the start of an access, takes every word of main memory, but not every byte.
constexpr u32 wordOf(u32 address) { return address & ~3U; }

inline constexpr u32 biosFirst = 0x1FC00000;
inline constexpr u32 biosMask = biosMemorySize - 1;

}  // namespace tarn::history
