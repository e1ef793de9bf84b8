// What the programs say on standard error when the CPU has paused.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn {

/// What the program says of itself, read when it is first asked for.
const symbols::SymbolTable& programSymbols();

/// Says where and why the CPU paused, and how the program got there. `speaker` is the name of the program
/// that speaks.
void reportPause(const char* speaker);

/// Ends a line with the steps and vertical blanks so far.
void endWithCounts();

}  // namespace tarn
