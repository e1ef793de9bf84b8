// The steps of the GIF packet parser, which the transfer entry points call.
#pragma once

#include "base/device_codes.h"
#include "machine/machine.h"

#include <limits>

namespace tarn {

/// The rest of a stream, and a limit to the work that it may cause.
struct GifInput {
    const u8* data;
    u64 quadwords;
    u64 lastWork = std::numeric_limits<u64>::max();  ///< value of Gs.work

    bool goesOn() const { return quadwords > 0 && Gs.work < lastWork; }

    void skip(u64 count) {
        data += count * quadwordBytes;
        quadwords -= count;
    }
};

/// Consumes the next tag of the stream, or data of the current form. With `groups24`, images for a 24-bit
/// destination are in groups of three quadwords.
void consumeGif(GifInput& stream, bool groups24);

/// Decodes a GIF tag (16 bytes) and sets what the following quadwords are.
void GIFtag(const u8* quadword);

/// Processes a quadword (16 bytes) of PACKED data for a descriptor, 0 to 15.
void GIFprocessReg(const u8* quadword, u32 descriptor);

}  // namespace tarn
