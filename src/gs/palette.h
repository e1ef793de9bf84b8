// The palettes of indexed textures.
#pragma once

#include "base/device_codes.h"
#include "base/types.h"

#include <array>

namespace tarn {

constexpr bool isIndexed(u32 textureFormat) {
    return textureFormat == pixel_format::PSMT8 || textureFormat == pixel_format::PSMT4;
}

using Palette = std::array<u32, 256>;

/// The current palette as 32-bit colours, for a texture of the given format. All black if the palette's own
/// format is unknown.
Palette loadPalette(u32 textureFormat);

/// The palette index at a texel of the current texture, which must be an indexed one.
u32 textureIndex(u32 u, u32 v);

}  // namespace tarn
