// Writing PNG files.
#pragma once

#include "base/types.h"

#include <cstdio>
#include <span>

namespace tarn {

/// Writes rows of red, green and blue bytes, from the top and without padding. Returns false on failure, with
/// errno set if the stream failed.
bool writePng(std::FILE* file, u32 width, u32 height, std::span<const u8> pixels);

}  // namespace tarn
