// Runs of many steps.
#pragma once

#include "base/types.h"

namespace tarn::r5900 {

/// What MipsRun does, over decoded instructions.
u64 runDecoded(u64 limit);

/// How MipsRun does it: chosen before a run, by who observes it.
inline u64 (*runMethod)(u64 limit) = runDecoded;

}  // namespace tarn::r5900
