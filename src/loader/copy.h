// Reading the ELF header tables, and copying the program and the BIOS image into memory, one start-up step a
// function.
#pragma once

#include "base/types.h"

namespace tarn {

/// Reads the header tables; returns the number of reads that failed (saturating at 255). Headers beyond the
/// tables count as failed reads.
u8 ElfLoadHeader();

/// Copy segments, sections and the BIOS image into memory; the result carries nothing. Errors are counted
/// and reported: one for each missing byte, and one for each part that main memory cannot hold.
u8 CopyProgramToMemory();
u8 CopySectionToMemory();
u8 CopyBiosToMemory();

}  // namespace tarn
