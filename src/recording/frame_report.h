// The HTML page that shows a frame of a recording.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>
#include <optional>

namespace tarn::recording {

/// Writes the page of a frame, or of the last one that draws primitives. Returns an error message, or an
/// empty string on success.
std::string writeReport(Reader& recording, std::optional<u64> frame, std::FILE* output);

}  // namespace tarn::recording
