// A summary of a recording.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

/// Prints the summary. Returns why the recording cannot be replayed, or an empty string.
std::string printInfo(Reader& recording, std::FILE* output);

}  // namespace tarn::recording
