// The machine as the benchmarks use it: memory and renderer, without a window.
#pragma once

#include "base/types.h"

#include <span>

namespace tarn::bench {

/// Puts every record into its start state and allocates the memory areas and local memory.
void startMachine();

/// Copies a program to guestCodeAddress and sets PC to it.
void loadGuest(std::span<const u32> program);

}  // namespace tarn::bench
