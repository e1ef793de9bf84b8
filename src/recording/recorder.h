// Recording what reaches the GS while the machine runs.
#pragma once

#include "base/types.h"
#include "symbols/symbol_table.h"

#include <cstdio>
#include <string>

namespace tarn::recording {

/// The frames to record, by number from 1: frame N ends with the Nth vertical blank.
struct FrameRange {
    u64 first = 1;
    u64 last = ~u64{0};
};

/// Starts to record everything that reaches the GS to `stream`, in the frames of the range. The stream and
/// the table must exist until stopRecording.
void startRecording(std::FILE* stream, const FrameRange& frames, const symbols::SymbolTable& table,
                    const std::string& emulator);

/// Completes the recording, if there is one. Returns false if the run did not reach the first frame.
bool stopRecording();

}  // namespace tarn::recording
