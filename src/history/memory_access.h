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
/// A step makes at most one: that of its instruction, or, if it is a taken branch or a jump, of its delay
/// slot. Accesses by system calls and the DMA controller are not predicted.
std::optional<MemoryAccess> nextMemoryAccess(const MipsCpuRecord& cpu);

/// Translates `address` to one that is the same for all views of a byte.
u32 placeOf(u32 address, Access access);

/// The aligned word around a byte. Areas begin and end at words, and the memory map, which tests the start of
/// an access, maps every word of main memory, but not every byte.
constexpr u32 wordOf(u32 address) { return address & ~3U; }

inline constexpr u32 biosFirst = 0x1FC00000;
inline constexpr u32 biosMask = biosMemorySize - 1;

}  // namespace tarn::history
