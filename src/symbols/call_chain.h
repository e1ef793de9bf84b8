// The call stack of the guest program, recovered from its code and its stack.
#pragma once

#include "symbols/symbol_table.h"

#include <span>

namespace tarn::symbols {

/// The addresses of the call instructions, innermost first, as far as they are certain: each led to the
/// function that the one before is in, or was saved by that function's own prologue. The registers are those
/// at `pc`.
std::vector<u32> callersOf(const SymbolTable& table, std::span<const u8> mainMemory, u64 pc, u64 stackPointer,
                           u64 returnAddress);

}  // namespace tarn::symbols
