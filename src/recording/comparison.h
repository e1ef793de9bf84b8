// Comparing two recordings of one program.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

struct Comparison {
    std::string failure;  ///< what keeps one of them from being replayed, a sentence, or nothing
    bool same = false;
};

/// Prints the first command of which there is another in `second`, and the first one after which the pixels
/// differ, with these. Driver steps and places in the program do not count.
Comparison compareRecordings(Reader& first, Reader& second, std::FILE* output);

}  // namespace tarn::recording
