// Printing the DMA controller's registers.
#pragma once

#include "base/types.h"

namespace tarn {

/// Prints a channel's registers to standard output. Prints nothing for a channel of 10 or more.
void DmaPrintChannelInfo(u8 channel);

}  // namespace tarn
