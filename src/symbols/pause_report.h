// What a person wants to know when the CPU has paused: where in the program, how it got there, what to do.
#pragma once

#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// The address of the instruction that paused the CPU: PC has left it after an access that failed. Nothing
/// when it could not be fetched, or stopped in a delay slot.
std::optional<u32> pausedInstruction();

/// What the program gave to the kernel call Exit, if that is what the CPU has paused on.
std::optional<s32> exitResult();

/// The lines of the report on the machine as it is, which has paused. None of them for what is not known.
std::vector<std::string> pauseReport(const SymbolTable& table);

}  // namespace tarn::symbols
