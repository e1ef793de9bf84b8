// The coverage of a program's lines and functions in lcov's format.
#pragma once

#include "symbols/execution_counts.h"
#include "symbols/symbol_table.h"

#include <cstdio>

namespace tarn::symbols {

/// Writes a record for each source file that the symbol table knows, with what did not run too.
void writeLcov(std::FILE* file, const ExecutionCounts& counts, const SymbolTable& table);

}  // namespace tarn::symbols
