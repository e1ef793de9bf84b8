// Allocation and release of the four memory areas.
#pragma once

#include "base/types.h"

namespace tarn {

/// Each allocates an area, reports that in the EmuOutput pane, and returns 1, or 0 on failure.
u8 MipsMemoryAlloc();
u8 MipsSpecialAreaMemoryAlloc();
u8 MipsGSAreaMemoryAlloc();
u8 MipsBiosMemoryAlloc();

/// Frees those of the four areas that are allocated, and reports it.
void FreeAllMemory();

}  // namespace tarn
