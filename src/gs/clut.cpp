// Palette conversions: the order of entries, and 16-bit colours.
#include "gs/transfer.h"
#include "machine/machine.h"

#include <algorithm>

namespace tarn {

u32 expandPalette16(u16 entry) {
    const u32 rgb = (entry & 0x1Fu) << 3 | (entry & 0x3E0u) << 6 | (entry & 0x7C00u) << 9;
    const bool upper = (entry & 0x8000) != 0;
    if (Gs.texa.aem == 1 && !upper && rgb == 0) {
        return 0;  // transparent black
    }
    return rgb | (upper ? Gs.texa.ta1 : Gs.texa.ta0) << 24;
}

void copy_clut_pscm32(u32* destination, const u32* source) {
    for (u32 i = 0; i < 256; ++i) {
        const u32 exchanged = (i & ~0x18u) | (i & 0x08) << 1 | (i & 0x10) >> 1;
        destination[exchanged] = source[i];
    }
}

void copy_clut_pscm324(u32* destination, const u32* source) { std::copy_n(source, 64, destination); }

void copy_clut_cpsm16(u32* destination, const u16* source) {
    std::transform(source, source + 256, destination, expandPalette16);
}

}  // namespace tarn
