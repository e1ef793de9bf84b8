// The way from the machine's devices to the GS.
#pragma once

#include "gs/gs.h"

namespace tarn {

/// What the memory map, the DMA controller and vertical-blank pacing call of the GS. An observer puts
/// functions of its own here, which call the former ones.
struct GsPort {
    u32 (*transfer)(const u8* data, u32 quadwords) = GSgifTransferStep;
    void (*write32)(u32 address, u32 value) = GSwrite32;
    void (*write64)(u32 address, u64 value) = GSwrite64;
    u64 (*read64)(u32 address) = GSread64;  ///< reads of 32 bits have no effect
    void (*vsync)() = GSvsync;
};

inline GsPort gsPort;

}  // namespace tarn
