// Routines for two instructions in a row.
#pragma once

#include "r5900/decode_cache.h"

namespace tarn::r5900 {

/// The routine that executes both of two instructions with these routines, or the first one's own.
Routine pairOf(Routine first, Routine second);

}  // namespace tarn::r5900
