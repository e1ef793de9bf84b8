// The profile in the format of callgrind's output files.
#pragma once

#include "symbols/execution_counts.h"
#include "symbols/symbol_table.h"

#include <cstdio>

namespace tarn::symbols {

/// Writes the costs by function and line, and the calls. `program` is the path of the ELF file.
void writeCallgrind(std::FILE* file, const ExecutionCounts& counts, const SymbolTable& table,
                    const std::string& program);

}  // namespace tarn::symbols
