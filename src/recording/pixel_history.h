// The history of a pixel: every command that wrote it, or would have.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>
#include <optional>

namespace tarn::recording {

struct PixelQuestion {
    u32 x = 0;
    u32 y = 0;
    std::optional<u64> lastCommand;  ///< the history ends with it
};

/// Prints the history of a pixel of the frame buffer that the last command draws to, or, if that draws no
/// primitive, the last one before it that does; the newest command comes last. Returns what keeps the
/// recording from being replayed, a sentence, or nothing.
std::string printPixelHistory(Reader& recording, const PixelQuestion& question, std::FILE* output);

}  // namespace tarn::recording
