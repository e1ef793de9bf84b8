// What a recording contains, as a whole.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

/// Prints it. Returns what keeps the recording from being replayed, a sentence, or nothing.
std::string printInfo(Reader& recording, std::FILE* output);

}  // namespace tarn::recording
