// The two steps that follow every instruction: the DMA controller's and vertical-blank pacing's, with what
// they do nearly every time inline. dma/ implements the rest.
#pragma once

#include "machine/machine.h"

namespace tarn {

/// Whether a transfer to the GIF was more than one step may do, so that the following steps go on with it.
/// They run no instruction and count towards nothing.
inline bool gifTransferGoesOn() { return Ps2Bios.gifQuadwords != 0; }

/// The work of DmaUpdate when something may be pending, and of GSUpdate when the countdown is over.
bool serveDmaRequests();
void testVerticalBlank();

/// Acts on the last guest write and read in the DMA register block and on a SIF0 start request. False when
/// there is more to do than one step may: a transfer to the GIF goes on.
inline bool DmaUpdate() {
    if ((Ps2Bios.dmaWritePending | Ps2Bios.dmaReadPending | Ps2Bios.sif0StartRequest) != 0) [[unlikely]] {
        return serveDmaRequests();
    }
    return true;
}

/// Counts towards the next vertical blank; at one, presents the frame and marks pane 0 dirty.
inline void GSUpdate() {
    if (Ps2Bios.vsyncCountdown > vsyncThreshold) [[likely]] {
        --Ps2Bios.vsyncCountdown;
    } else {
        testVerticalBlank();
    }
}

/// How many steps may run before these two have more to do than to count one step each down.
inline u64 quietSteps() {
    const bool pending = (Ps2Bios.dmaWritePending | Ps2Bios.dmaReadPending | Ps2Bios.sif0StartRequest) != 0;
    return pending || Ps2Bios.vsyncCountdown <= vsyncThreshold ? 0 : Ps2Bios.vsyncCountdown - vsyncThreshold;
}

/// The same as so many calls of DmaUpdate and GSUpdate, at most quietSteps().
inline void passQuietSteps(u64 steps) { Ps2Bios.vsyncCountdown -= steps; }

}  // namespace tarn
