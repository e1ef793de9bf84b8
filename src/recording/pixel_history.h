// The history of a pixel: all commands that wrote to it, or tried to.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>
#include <optional>

namespace tarn::recording {

struct PixelQuestion {
    u32 x = 0;
    u32 y = 0;
    std::optional<u64> lastCommand;  ///< where the history ends
};

/// Prints the history of a pixel, newest command last, in the frame buffer of the last command, or of the
/// last primitive before it. Returns why the recording cannot be replayed, or an empty string.
std::string printPixelHistory(Reader& recording, const PixelQuestion& question, std::FILE* output);

}  // namespace tarn::recording
