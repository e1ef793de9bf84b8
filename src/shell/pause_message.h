// The message about a paused CPU.
#pragma once

#include "symbols/symbol_table.h"

#include <string>
#include <vector>

namespace tarn {

/// The symbols of the guest program, read on the first call.
const symbols::SymbolTable& programSymbols();

/// Where the CPU paused: PC and the instruction.
std::string pausePlace();

/// Where and why the CPU paused, after how many steps, and the calls that led there.
std::vector<std::string> pauseMessage();

/// Reports on standard error where and why the CPU paused, and the calls that led there. Each line begins
/// with `speaker`, the name of this program.
void reportPause(const char* speaker);

/// The end of a line: the steps and vertical blanks so far.
std::string countsSoFar();

}  // namespace tarn
