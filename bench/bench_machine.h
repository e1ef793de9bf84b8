// The machine as the benchmarks use it: memory, renderer and panes, without a window.
#pragma once

#include "base/types.h"

#include <span>

namespace tarn::bench {

/// Every record in its start state, with the memory areas, local memory and the panes.
void startMachine();

/// Puts a program at guestCodeAddress and PC on it.
void loadGuest(std::span<const u32> program);

}  // namespace tarn::bench
