// The DMA controller's display for debugging.
#pragma once

#include "base/types.h"

namespace tarn {

/// Prints a channel's register copy to standard output; nothing for a channel of 10 or more.
void DmaPrintChannelInfo(u8 channel);

}  // namespace tarn
