// The general registers: the write, and the choice of the drawing context.
#pragma once

#include "base/device_codes.h"

namespace tarn {

/// Makes the records of context 0 or 1 the current ones.
void gsSetCtxt(u32 context);

/// One general-register write. Unknown addresses store nothing; every write ends with gsSetCtxt of the
/// current primitive's context. Writes of XYZ registers draw, a write of TRXDIR may copy, before it returns.
void GSwrite(u64 value, u32 address);

}  // namespace tarn
