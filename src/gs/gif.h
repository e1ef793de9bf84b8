// The steps of the GIF packet parser, which the transfer entry points call.
#pragma once

#include "base/types.h"

namespace tarn {

/// Decodes a GIF tag (16 bytes) and sets what the following quadwords are.
void GIFtag(const u8* quadword);

/// Processes a quadword (16 bytes) of PACKED data for a descriptor, 0 to 15.
void GIFprocessReg(const u8* quadword, u32 descriptor);

}  // namespace tarn
