// The coverage of a program's lines and functions in lcov's format.
#pragma once

#include "symbols/execution_counts.h"
#include "symbols/symbol_table.h"

#include <cstdio>

namespace tarn::symbols {

/// Writes a record for each source file in the symbol table, including code that did not run.
void writeLcov(std::FILE* file, const ExecutionCounts& counts, const SymbolTable& table);

}  // namespace tarn::symbols
