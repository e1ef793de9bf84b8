// Declares the two steps that follow every instruction: the DMA controller and vertical-blank pacing.
#pragma once

#include "base/types.h"

namespace tarn {

inline u64 nb_dma_transfert = 0;  ///< channel 2 starts so far
inline u64 verticalBlanks = 0;    ///< frames presented so far

/// Acts on the last guest write and read in the DMA register block and on a SIF0 start request.
void DmaUpdate();

/// Counts towards the next vertical blank; at one, presents the frame and marks pane 0 dirty.
void GSUpdate();

/// Prints a channel's register copy to standard output; nothing for a channel of 10 or more.
void DmaPrintChannelInfo(u8 channel);

}  // namespace tarn
