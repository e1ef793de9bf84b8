// The message on standard error about a paused CPU.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn {

/// The symbols of the guest program, read on the first call.
const symbols::SymbolTable& programSymbols();

/// Reports where and why the CPU paused, and the calls that led there. Each line begins with `speaker`, the
/// name of this program.
void reportPause(const char* speaker);

/// Ends a line with the steps and vertical blanks so far.
void endWithCounts();

}  // namespace tarn
