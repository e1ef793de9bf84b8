// Reading the symbols and line tables of an ELF file.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// The table is empty if the file is stripped, for another processor, or not ELF. It is also empty, with a
/// warning on standard error, if libelf or libdw cannot read the file.
SymbolTable readSymbols(const std::string& path);

}  // namespace tarn::symbols
