// Counting while a program runs.
#pragma once

#include "symbols/execution_counts.h"
#include "symbols/symbol_table.h"

namespace tarn::symbols {

/// Starts counting. Returns false when the host has no memory for the counts.
bool startCounting(const SymbolTable& table);

/// Stops counting and returns the counts; null if counting was not started.
std::optional<ExecutionCounts> stopCounting();

}  // namespace tarn::symbols
