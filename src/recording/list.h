// The list of a recording's commands.
#pragma once

#include "recording/command.h"
#include "recording/recording_reader.h"

#include <cstdio>
#include <optional>
#include <set>

namespace tarn::recording {

struct ListOptions {
    std::optional<u64> frame;
    std::set<CommandKind> kinds;  ///< all but writes to registers and reads of the field when empty
    bool full = false;            ///< with every field of the registers
    bool json = false;
};

/// Prints the commands, a line each or as a JSON array. Returns what keeps the recording from being replayed,
/// a sentence, or nothing; damage is left to the reader.
std::string printList(Reader& recording, const ListOptions& options, std::FILE* output);

}  // namespace tarn::recording
