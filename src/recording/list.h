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
    std::set<CommandKind> kinds;  ///< empty: all but register writes and reads of the field
    bool full = false;            ///< with every field of the registers
    bool json = false;
};

/// Prints the commands, one per line or as a JSON array. Returns why the recording cannot be replayed, or an
/// empty string. Damage is reported by the reader, not here.
std::string printList(Reader& recording, const ListOptions& options, std::FILE* output);

}  // namespace tarn::recording
