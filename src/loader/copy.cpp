// Reading the ELF header tables, and copying the program and the BIOS image into memory. The headers are not
// trusted: the sizes of the files and of the areas bound time and memory.
#include "loader/copy.h"

#include "base/diagnostics.h"
#include "loader/input_files.h"
#include "machine/machine.h"

#include <algorithm>
#include <span>

namespace tarn {
namespace {

/// Intentional: sections must end before the last two bytes of main memory; segments may fill it.
constexpr u32 segmentLimit = mainMemorySize;
constexpr u32 sectionLimit = 0x1FFFFFE;

/// Reads up to `size` bytes at the current position. Returns how many it read.
std::size_t readBytes(const FilePtr& file, void* destination, std::size_t size) {
    return file != nullptr ? std::fread(destination, 1, size, file.get()) : 0;
}

void seek(const FilePtr& file, u32 position) {
    if (file != nullptr) {
        std::fseek(file.get(), long{position}, SEEK_SET);
    }
}

/// Reads a header. Returns false, and leaves the header unchanged, if the file ends within it.
template <typename Header>
bool readHeader(Header& header) {
    Header read;
    if (readBytes(Loader.ElfFile, &read, sizeof read) != sizeof read) {
        return false;
    }
    header = read;
    return true;
}

/// Reads a table of `count` headers at a file offset. Returns how many were missing or did not fit.
template <typename Header>
u32 readTable(std::span<Header, elfTableEntries> table, u32 position, u32 count) {
    seek(Loader.ElfFile, position);
    u32 errors = count - std::min(count, elfTableEntries);
    for (Header& header : table.first(std::min(count, elfTableEntries))) {
        errors += readHeader(header) ? 0 : 1;
    }
    return errors;
}

/// Copies `size` bytes at a file offset to a main-memory offset. Returns the number of errors: one for each
/// byte that is missing from the file. A part that would end beyond `limit` is skipped and is one error.
u64 copyPart(u32 position, u32 address, u32 size, u32 limit) {
    if (MipsMemory == nullptr || u64{address} + size > limit) {
        return 1;
    }
    seek(Loader.ElfFile, position);
    return size - readBytes(Loader.ElfFile, MipsMemory + address, size);
}

void reportCopy(const char* what, u64 errors) {
    if (errors == 0) {
        PrintfToEmuOutput("Init:Copy %s To Memory: Done", what);
    } else {
        PrintfToEmuOutput("Init:Copy %s To Memory: Done with %lld errors", what, static_cast<s64>(errors));
    }
}

}  // namespace

u8 ElfLoadHeader() {
    const ElfFileHeader& header = Loader.ico_elf_hdr;
    u32 errors = 0;
    seek(Loader.ElfFile, 0);
    if (readHeader(Loader.ico_elf_hdr)) {
        PrintToEmuOutput("File:Read Elf Header ");
        MipsCpu.entry = header.e_entry;
    } else {
        ++errors;
    }
    errors += readTable(std::span(Loader.ico_elf_prg_hdr), header.e_phoff, header.e_phnum);
    PrintfToEmuOutput("File:Read Elf Program Header Numero 0 to %d", header.e_phnum);
    errors += readTable(std::span(Loader.ico_elf_sec_hdr), header.e_shoff, header.e_shnum);
    PrintfToEmuOutput("File:Read Elf Section Header Numero 0 to %d", header.e_shnum);
    PrintToEmuOutput(errors == 0 ? "File:Read Elf Header DONE" : "File:Read Elf Header ERROR");
    return static_cast<u8>(std::min(errors, 255U));
}

u8 CopyProgramToMemory() {
    PrintToEmuOutput("Init:Copy Program To Memory: ");
    u64 errors = 0;
    const u32 count = std::min<u32>(Loader.ico_elf_hdr.e_phnum, elfTableEntries);
    for (const ElfProgramHeader& segment : std::span(Loader.ico_elf_prg_hdr).first(count)) {
        errors += copyPart(segment.p_offset, segment.p_paddr, segment.p_filesz, segmentLimit);
    }
    reportCopy("Program", errors);
    return 0;
}

u8 CopySectionToMemory() {
    PrintToEmuOutput("Init:Copy Section To Memory: ");
    u64 errors = 0;
    const u32 count = std::min<u32>(Loader.ico_elf_hdr.e_shnum, elfTableEntries);
    for (const ElfSectionHeader& section : std::span(Loader.ico_elf_sec_hdr).first(count)) {
        errors += copyPart(section.sh_offset, section.sh_addr, section.sh_size, sectionLimit);
    }
    reportCopy("Section", errors);
    return 0;
}

u8 CopyBiosToMemory() {
    seek(Loader.BiosFile, 0);
    if (BiosMemory != nullptr) {
        readBytes(Loader.BiosFile, BiosMemory, biosMemorySize);
    }
    PrintToEmuOutput("Init:Copy BIOS To Memory:...Done");
    return 0;
}

}  // namespace tarn
