// The report on a paused CPU: where in the program, through which calls, and what is wrong.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// The address of the instruction that paused the CPU; after a failed access PC is already beyond it. Nothing
/// when it could not be fetched, or stopped in a delay slot.
std::optional<u32> pausedInstruction();

/// The argument of the kernel call Exit, if the CPU has paused on that call.
std::optional<s32> exitResult();

/// What is wrong, in a sentence without a full stop; empty when that is not known.
std::string pauseCause();

/// The lines of the report on the paused machine. What is not known is left out.
std::vector<std::string> pauseReport(const SymbolTable& table);

}  // namespace tarn::symbols
