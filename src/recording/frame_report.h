// The page on which one frame of a recording can be looked at.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>
#include <optional>

namespace tarn::recording {

/// Writes an HTML page about a frame, or about the last one that draws primitives. Returns why there is none,
/// a sentence, or nothing.
std::string writeReport(Reader& recording, std::optional<u64> frame, std::FILE* output);

}  // namespace tarn::recording
