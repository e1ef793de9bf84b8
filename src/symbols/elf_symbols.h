// Reading the symbols and line tables of an ELF file.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// The table is empty for a file that is stripped, for another processor or not ELF, and, with a warning on
/// standard error, for one that libelf or libdw cannot read.
SymbolTable readSymbols(const std::string& path);

}  // namespace tarn::symbols
