// The steps of the DMA controller and of vertical-blank pacing, which follow every instruction. Their usual
// paths are inline; dma/ implements the rest.
#pragma once

#include "machine/machine.h"

namespace tarn {

/// Whether a transfer to the GIF was too long for one call, so that the next ones continue it. Those execute
/// no instruction and do not count as steps.
inline bool gifTransferGoesOn() { return Ps2Bios.gifQuadwords != 0; }

/// The rare paths of DmaUpdate, when something may be pending, and of GSUpdate, when the countdown is over.
bool serveDmaRequests();
void testVerticalBlank();

/// Acts on the last guest write and read in the DMA register block, and on a SIF0 start request. Returns
/// false if a transfer to the GIF is not complete.
inline bool DmaUpdate() {
    if ((Ps2Bios.dmaWritePending | Ps2Bios.dmaReadPending | Ps2Bios.sif0StartRequest) != 0) [[unlikely]] {
        return serveDmaRequests();
    }
    return true;
}

/// Counts down to the next vertical blank, which presents the frame and marks pane 0 dirty.
inline void GSUpdate() {
    if (Ps2Bios.vsyncCountdown > vsyncThreshold) [[likely]] {
        --Ps2Bios.vsyncCountdown;
    } else {
        testVerticalBlank();
    }
}

/// How many steps can run before these two have more to do than count down.
inline u64 quietSteps() {
    const bool pending = (Ps2Bios.dmaWritePending | Ps2Bios.dmaReadPending | Ps2Bios.sif0StartRequest) != 0;
    return pending || Ps2Bios.vsyncCountdown <= vsyncThreshold ? 0 : Ps2Bios.vsyncCountdown - vsyncThreshold;
}

/// Equals `steps` calls of DmaUpdate and GSUpdate, at most quietSteps().
inline void passQuietSteps(u64 steps) { Ps2Bios.vsyncCountdown -= steps; }

}  // namespace tarn
