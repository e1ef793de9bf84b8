// Checking that replaying a recording leads to its final state.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

enum class ReplayResult : u8 {
    Same,
    Different,  ///< in local memory or registers
    Unknown,    ///< the recording has no end, or cannot be replayed up to it
};

/// Replays the recording and prints the result.
ReplayResult checkReplay(Reader& recording, std::FILE* output);

}  // namespace tarn::recording
