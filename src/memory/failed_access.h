// The last access that failed, for reports on a pause.
#pragma once

#include "base/types.h"

namespace tarn {

/// Not part of the machine: it records what the registers may no longer show when the pause is reported.
struct FailedAccess {
    u64 cycle = 0;  ///< MipsCpu.cycle after the instruction
    u32 pc = 0;
    u32 address = 0;
    u32 bytes = 0;
    bool isStore = false;
};

inline FailedAccess lastFailedAccess;

}  // namespace tarn
