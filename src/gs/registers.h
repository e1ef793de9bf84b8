// Writes to the general registers, and selection of the drawing context.
#pragma once

#include "base/device_codes.h"

namespace tarn {

/// Selects context 0 or 1.
void gsSetCtxt(u32 context);

/// Writes a general register. Unknown addresses store nothing. Every write ends with gsSetCtxt of the current
/// primitive's context. Writes to XYZ registers draw, and a write to TRXDIR may copy, before this returns.
void GSwrite(u64 value, u32 address);

}  // namespace tarn
