// The four emulated memory areas: their sizes and buffers.
#pragma once

#include "base/buffer.h"
#include "base/types.h"

namespace tarn {

inline constexpr u32 mainMemorySize = 0x2000000;     ///< 32 MB
inline constexpr u32 specialAreaSize = 0x10000;      ///< 64 KB of I/O registers
inline constexpr u32 gsAreaSize = 0x10C0;            ///< 4288 bytes, allocated and never used
inline constexpr u32 biosMemorySize = 0x400000;      ///< 4 MB
inline constexpr u32 specialAreaFirst = 0x10000000;  ///< guest address
inline constexpr u32 dmaRegisterBase = 0x8000;       ///< special-area offsets from here up are DMA registers

/// The buffers, little-endian. Empty before start-up allocates them and after FreeAllMemory.
struct MemoryAreas {
    Buffer main;
    Buffer special;
    Buffer gs;
    Buffer bios;
};

}  // namespace tarn
