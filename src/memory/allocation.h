// Allocation and release of the four memory areas.
#pragma once

#include "base/types.h"

namespace tarn {

/// Each allocates one area, says so in the EmuOutput pane, and returns 1, or 0 when that failed.
u8 MipsMemoryAlloc();
u8 MipsSpecialAreaMemoryAlloc();
u8 MipsGSAreaMemoryAlloc();
u8 MipsBiosMemoryAlloc();

/// Frees what is allocated of the four areas and says so.
void FreeAllMemory();

}  // namespace tarn
