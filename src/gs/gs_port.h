// The functions through which the machine's devices reach the GS.
#pragma once

#include "gs/gs.h"

namespace tarn {

/// The functions of the GS that the memory map, the DMA controller and vertical-blank pacing call. An
/// observer replaces them by its own, which call the previous ones.
struct GsPort {
    u32 (*transfer)(const u8* data, u32 quadwords) = GSgifTransferStep;
    void (*write32)(u32 address, u32 value) = GSwrite32;
    void (*write64)(u32 address, u64 value) = GSwrite64;
    u64 (*read64)(u32 address) = GSread64;  ///< 32-bit reads have no side effect
    void (*vsync)() = GSvsync;
};

inline GsPort gsPort;

}  // namespace tarn
