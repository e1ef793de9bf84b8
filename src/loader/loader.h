// Declares the loading of the guest program and of the BIOS image, one start-up step a function.
#pragma once

#include "base/types.h"

namespace tarn {

/// Opens a file and reports its size; 1, or 0 with a message when it cannot be opened.
u8 ElfOpenFile(const char* path);
u8 BiosOpenFile(const char* path);

/// Reads the header tables; returns the number of reads that failed (saturating at 255).
u8 ElfLoadHeader();

/// Copy segments, sections and the BIOS image into memory. Errors are counted and reported.
u8 CopyProgramToMemory();
u8 CopySectionToMemory();
u8 CopyBiosToMemory();

/// Close and report a file that is open; do nothing otherwise.
void ElfCloseFile();
void BiosCloseFile();

}  // namespace tarn
