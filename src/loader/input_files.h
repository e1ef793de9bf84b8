// The files of the program and the BIOS, and the program's header tables.
#pragma once

#include "base/file.h"
#include "base/types.h"
#include "loader/elf_format.h"

#include <array>

namespace tarn {

inline constexpr u32 elfTableEntries = 30;  ///< size of each header table; further headers are not used

struct LoaderState {
    FilePtr ElfFile;
    FilePtr BiosFile;
    s32 ElfFileSize = 0;  ///< bytes
    ElfFileHeader ico_elf_hdr{};
    std::array<ElfProgramHeader, elfTableEntries> ico_elf_prg_hdr{};
    std::array<ElfSectionHeader, elfTableEntries> ico_elf_sec_hdr{};
};

inline LoaderState Loader;

/// Opens a file and reports its size. Returns 1, or 0 after a message if it cannot be opened.
u8 ElfOpenFile(const char* path);
u8 BiosOpenFile(const char* path);

/// Close a file, with a message. Do nothing if it is not open.
void ElfCloseFile();
void BiosCloseFile();

}  // namespace tarn
