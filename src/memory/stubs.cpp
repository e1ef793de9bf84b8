// Placeholders until this subsystem is built.
#include "memory/memory.h"
namespace tarn {
void MipsMemoryWrite(GuestValue, Width, u64, s32) {}
void MipsMemoryRead(GuestValue*, Width, u64, s32) {}
u8 MipsMemoryAlloc() { return 0; }
u8 MipsSpecialAreaMemoryAlloc() { return 0; }
u8 MipsGSAreaMemoryAlloc() { return 0; }
u8 MipsBiosMemoryAlloc() { return 0; }
void FreeAllMemory() {}
}  // namespace tarn
