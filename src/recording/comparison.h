// Comparing two recordings of a program.
#pragma once

#include "recording/recording_reader.h"

#include <cstdio>

namespace tarn::recording {

struct Comparison {
    std::string failure;  ///< why one of them cannot be replayed, or empty
    bool same = false;
};

/// Prints the first command that differs in `second`, and the first one after which pixels differ, with these
/// pixels. Driver steps and places in the program are not compared.
Comparison compareRecordings(Reader& first, Reader& second, std::FILE* output);

}  // namespace tarn::recording
