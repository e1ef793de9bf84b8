// Placeholders until this subsystem is built.
#include "loader/loader.h"
namespace tarn {
u8 ElfOpenFile(const char*) { return 0; }
u8 BiosOpenFile(const char*) { return 0; }
u8 ElfLoadHeader() { return 0; }
u8 CopyProgramToMemory() { return 0; }
u8 CopySectionToMemory() { return 0; }
u8 CopyBiosToMemory() { return 0; }
void ElfCloseFile() {}
void BiosCloseFile() {}
}  // namespace tarn
