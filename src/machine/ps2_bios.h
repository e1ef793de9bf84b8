// The state of the kernel and of the DMA controller.
#pragma once

#include "base/device_codes.h"
#include "base/types.h"

#include <array>

namespace tarn {

/// Shadow copy of one DMA channel's registers.
struct DmaChannelRegs {
    u64 chcr = 0;  ///< channel control
    u64 madr = 0;  ///< memory address
    u64 qwc = 0;   ///< quadword count
    u64 tadr = 0;  ///< tag address
    u64 asr0 = 0;  ///< address stack 0
    u64 asr1 = 0;  ///< address stack 1
    u64 sadr = 0;  ///< scratch-pad address
};

/// The guest's completion handler of one DMA channel.
struct DmacHandlerSlot {
    u64 handlerAddress = 0;  ///< guest address
    u64 savedPc = 0;         ///< guest PC when the handler was entered
    u8 active = 0;           ///< 1 once entered; nothing clears it
};

inline constexpr u64 vsyncPeriod = 0x6FFF;  ///< start value of vsyncCountdown, in driver steps
inline constexpr u64 vsyncThreshold = 14;   ///< at or below it each step tests for a vertical blank

struct Ps2BiosRecord {
    u8 dmaWritePending = 0;  ///< 1: the guest has written the DMA register half of the special area
    u64 dmaWriteOffset = 0;  ///< offset of that write in the special area
    u64 dmaWriteValue = 0;
    u8 dmaReadPending = 0;  ///< 1: the guest has read from it
    u64 dmaReadOffset = 0;
    u64 dmaReadValue = 0;
    std::array<DmaChannelRegs, dmaChannelCount> dmaChannel{};
    std::array<DmacHandlerSlot, dmaChannelCount> dmacHandler{};
    u8 semaInUse = 0;  ///< 1 once the single semaphore is taken
    std::array<u32, 2> semaWords{};
    u8 sif0StartRequest = 0;  ///< equal to 1: DmaUpdate diverts the guest into its SIF0 handler
    u64 vsyncCountdown = 0;   ///< driver steps until GSUpdate next tests for a vertical blank
    u32 gifAddress = 0;       ///< in main memory, of what is left of the transfer to the GIF
    u32 gifQuadwords = 0;     ///< left of it
};

}  // namespace tarn
