// Declares the way of running many steps at once, over instructions that are decoded once and kept.
#pragma once

#include "base/types.h"

namespace tarn {

/// Executes steps, at least one and at most `limit`, with the results that as many calls of MipsUpdateCpu
/// have. Returns how many. All but the last have done nothing that anyone but the CPU could notice: they have
/// computed, branched, and accessed main memory. The last one may have done anything.
u64 MipsRun(u64 limit);

}  // namespace tarn
