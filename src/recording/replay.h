// Checking that a recording gives what it ended with.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

enum class ReplayResult : u8 {
    Same,
    Different,  ///< local memory or registers are not what they were
    Unknown,    ///< the recording has no end, or cannot be replayed to it
};

/// Replays the recording and says on `output` what came of it.
ReplayResult checkReplay(Reader& recording, std::FILE* output);

}  // namespace tarn::recording
