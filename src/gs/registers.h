// Declares the general-register write and the choice of the drawing context.
#pragma once

#include "base/types.h"

namespace tarn {

/// Points the current-context pointers at the records of context 0 or 1.
void gsSetCtxt(u32 context);

/// One general-register write: a 64-bit value to a register address (A+D numbering). Unknown addresses
/// store nothing; every write ends with gsSetCtxt of the current primitive's context.
void GSwrite(u64 value, u32 address);

}  // namespace tarn
