// The parts of an ELF32 file that the loader reads, as they are in the file (little-endian).
#pragma once

#include "base/types.h"

#include <array>
#include <bit>

namespace tarn {

static_assert(std::endian::native == std::endian::little, "headers are read without swapping bytes");

struct ElfFileHeader {
    std::array<u8, 16> e_ident{};
    u16 e_type = 0;
    u16 e_machine = 0;
    u32 e_version = 0;
    u32 e_entry = 0;
    u32 e_phoff = 0;  ///< file offset of the program header table
    u32 e_shoff = 0;  ///< file offset of the section header table
    u32 e_flags = 0;
    u16 e_ehsize = 0;
    u16 e_phentsize = 0;
    u16 e_phnum = 0;
    u16 e_shentsize = 0;
    u16 e_shnum = 0;
    u16 e_shstrndx = 0;
};

struct ElfProgramHeader {
    u32 p_type = 0;
    u32 p_offset = 0;
    u32 p_vaddr = 0;
    u32 p_paddr = 0;  ///< main-memory offset that the segment is copied to
    u32 p_filesz = 0;
    u32 p_memsz = 0;
    u32 p_flags = 0;
    u32 p_align = 0;
};

struct ElfSectionHeader {
    u32 sh_name = 0;
    u32 sh_type = 0;
    u32 sh_flags = 0;
    u32 sh_addr = 0;  ///< main-memory offset that the section is copied to
    u32 sh_offset = 0;
    u32 sh_size = 0;
    u32 sh_link = 0;
    u32 sh_info = 0;
    u32 sh_addralign = 0;
    u32 sh_entsize = 0;
};

static_assert(sizeof(ElfFileHeader) == 52 && sizeof(ElfProgramHeader) == 32 &&
              sizeof(ElfSectionHeader) == 40);

}  // namespace tarn
