// BMP files, checked before SDL's reader sees them.
#pragma once

#include "base/types.h"
#include "gui/surface.h"

#include <span>

namespace tarn {

/// Whether the bytes are an uncompressed BMP of 1, 4, 8, 16, 24 or 32 bits a pixel that is no larger than it
/// says, with sizes that SDL's reader survives.
bool isSaneBmp(std::span<const u8> file);

/// Loads a BMP file; null when it cannot be read or is not sane.
SurfacePtr loadBmpFile(const char* path);

}  // namespace tarn
