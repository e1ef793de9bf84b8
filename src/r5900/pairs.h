// Routines for pairs of consecutive instructions.
#pragma once

#include "r5900/decode_cache.h"

namespace tarn::r5900 {

/// The routine that executes a pair of instructions with these routines; `first` if there is none.
Routine pairOf(Routine first, Routine second);

}  // namespace tarn::r5900
