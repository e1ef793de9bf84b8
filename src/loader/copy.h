// Reading the ELF header tables, and copying the program and the BIOS image into memory: a function for each
// start-up step.
#pragma once

#include "base/types.h"

namespace tarn {

/// Reads the header tables. Returns the number of reads that failed, at most 255. Headers that do not fit in
/// the tables count as failed reads.
u8 ElfLoadHeader();

/// Copy segments, sections and the BIOS image into memory. Errors are counted and reported: one for each
/// missing byte, and one for each part that does not fit in main memory. The return value has no meaning.
u8 CopyProgramToMemory();
u8 CopySectionToMemory();
u8 CopyBiosToMemory();

}  // namespace tarn
