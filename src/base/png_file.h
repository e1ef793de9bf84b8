// Writing PNG files.
#pragma once

#include "base/types.h"

#include <cstdio>
#include <span>

namespace tarn {

/// Writes rows from the top, of red, green and blue bytes without padding. False when that fails, with errno
/// set if it was the stream that failed.
bool writePng(std::FILE* file, u32 width, u32 height, std::span<const u8> pixels);

}  // namespace tarn
