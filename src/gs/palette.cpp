// The palettes of indexed textures.
#include "gs/palette.h"

#include "gs/local_memory.h"
#include "gs/transfer.h"

#include <cstddef>
#include <cstring>

namespace tarn {
namespace {

using namespace pixel_format;

/// `count` entries from a word of local memory on.
template <typename Entry, std::size_t count>
std::array<Entry, count> entriesAt(u32 word) {
    std::array<Entry, count> entries;
    countWork(sizeof entries / 4, 1);
    constexpr std::size_t perWord = sizeof(u32) / sizeof(Entry);
    forLocalRuns(word, sizeof(entries) / 4, [&entries](const u32* words, u32 first, u32 run) {
        std::memcpy(entries.data() + first * perWord, words, run * 4);
    });
    return entries;
}

}  // namespace

Palette loadPalette(u32 textureFormat) {
    const GsTex0& tex0 = Gs.tex0();
    Palette palette{};
    // CSM 1 palettes start at a pixel of a buffer CBW × 64 wide, in steps of 16 pixels. So do 16-bit palettes
    // of 8-bit textures, whatever CSM is.
    u32 source = tex0.cbp;
    if (tex0.csm == 1 || (textureFormat == PSMT8 && tex0.cpsm == PSMCT16)) {
        source += Gs.clut.cov * Gs.clut.cbw * 64 + Gs.clut.cou * 16;
    }
    if (tex0.cpsm == PSMCT16) {
        copy_clut_cpsm16(palette.data(), entriesAt<u16, 256>(source).data());
    } else if (tex0.cpsm == PSMCT32 && textureFormat == PSMT8) {
        copy_clut_pscm32(palette.data(), entriesAt<u32, 256>(source).data());
    } else if (tex0.cpsm == PSMCT32) {
        copy_clut_pscm324(palette.data(), entriesAt<u32, 64>(source).data());
    }
    return palette;
}

u32 textureIndex(u32 u, u32 v) {
    const GsTex0& tex0 = Gs.tex0();
    const auto byteAt = [&tex0](u32 offset) { return Gs.vRam[(tex0.tbp0 * 4 + offset) % localMemoryBytes]; };
    if (tex0.psm == PSMT8) {
        return byteAt(v * tex0.tbw + u);
    }
    const u8 pair = byteAt(v * (tex0.tbw / 2) + u / 2);
    return u % 2 == 0 ? pair & 15 : pair >> 4;
}

}  // namespace tarn
