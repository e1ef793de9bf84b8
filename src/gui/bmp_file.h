// Reading BMP files, which are checked before SDL's reader sees them.
#pragma once

#include "base/types.h"
#include "gui/surface.h"

#include <span>

namespace tarn {

/// Whether the bytes are an uncompressed BMP of 1, 4, 8, 16, 24 or 32 bits per pixel, complete, with sizes
/// that SDL's reader can handle.
bool isSaneBmp(std::span<const u8> file);

/// Loads a BMP file. Returns null if it cannot be read or is malformed.
SurfacePtr loadBmpFile(const char* path);

}  // namespace tarn
