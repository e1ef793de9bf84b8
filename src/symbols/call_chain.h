// The call stack of the guest program, recovered from its code and its stack.
#pragma once

#include "symbols/symbol_table.h"

#include <span>

namespace tarn::symbols {

/// The addresses of the call instructions, innermost first, as far as they are certain: each leads to the
/// function of the previous one, or was saved by that function's prologue. The registers must be those at
/// `pc`. Adds the stack addresses of the return addresses used to `savedAt`.
std::vector<u32> callersOf(const SymbolTable& table, std::span<const u8> mainMemory, u64 pc, u64 stackPointer,
                           u64 returnAddress, std::vector<u32>* savedAt = nullptr);

}  // namespace tarn::symbols
