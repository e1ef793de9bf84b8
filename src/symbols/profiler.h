// Counting while a program runs.
#pragma once

#include "symbols/execution_counts.h"
#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// Has everything counted that runs from now on. False when the host has no memory for it.
bool startCounting(const SymbolTable& table);

/// Ends that, and gives what was counted; nothing when nothing was.
std::optional<ExecutionCounts> stopCounting();

}  // namespace tarn::symbols
