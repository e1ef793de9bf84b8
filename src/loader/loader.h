// Declares the loading of the guest program and of the BIOS image, one start-up step a function, and owns
// the record of the open files and the program's header tables.
#pragma once

#include "base/file.h"
#include "base/types.h"
#include "loader/elf_format.h"

#include <array>

namespace tarn {

inline constexpr u32 elfTableEntries = 30;  ///< room in each header table; further headers are not used

struct LoaderState {
    FilePtr ElfFile;
    FilePtr BiosFile;
    s32 ElfFileSize = 0;  ///< bytes
    ElfFileHeader ico_elf_hdr{};
    std::array<ElfProgramHeader, elfTableEntries> ico_elf_prg_hdr{};
    std::array<ElfSectionHeader, elfTableEntries> ico_elf_sec_hdr{};
};

inline LoaderState Loader;

/// Opens a file and reports its size; 1, or 0 with a message when it cannot be opened.
u8 ElfOpenFile(const char* path);
u8 BiosOpenFile(const char* path);

/// Reads the header tables; returns the number of reads that failed (saturating at 255). Headers beyond the
/// tables count as failed reads.
u8 ElfLoadHeader();

/// Copy segments, sections and the BIOS image into memory; the result carries nothing. Errors are counted
/// and reported: one for each missing byte, and one for each part that main memory cannot hold.
u8 CopyProgramToMemory();
u8 CopySectionToMemory();
u8 CopyBiosToMemory();

/// Close and report a file that is open; do nothing otherwise.
void ElfCloseFile();
void BiosCloseFile();

}  // namespace tarn
