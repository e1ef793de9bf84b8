// Runs of many steps.
#pragma once

#include "base/types.h"

namespace tarn::r5900 {

/// The implementation of MipsRun on decoded instructions.
u64 runDecoded(u64 limit);

/// The current implementation, selected between runs.
inline u64 (*runMethod)(u64 limit) = runDecoded;

}  // namespace tarn::r5900
