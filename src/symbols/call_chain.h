// The call stack of the guest program, recovered from its code and its stack.
#pragma once

#include "symbols/symbol_table.h"

#include <span>

namespace tarn::symbols {

/// The addresses of the call instructions, innermost first, as far as they are certain: each led to the
/// function that the one before is in, or was saved by that function's own prologue. The registers are those
/// at `pc`. The places on the stack of the return addresses that this follows from are added to `savedAt`.
std::vector<u32> callersOf(const SymbolTable& table, std::span<const u8> mainMemory, u64 pc, u64 stackPointer,
                           u64 returnAddress, std::vector<u32>* savedAt = nullptr);

}  // namespace tarn::symbols
