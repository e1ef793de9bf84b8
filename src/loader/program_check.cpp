// Checking the headers of a program's file.
#include "loader/program_check.h"

#include "base/file.h"
#include "loader/elf_format.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tarn {
namespace {

constexpr u8 class32 = 1;
constexpr u8 leastSignificantFirst = 1;
constexpr u16 executable = 2;
constexpr u16 mips = 8;
constexpr u32 loadable = 1;

bool readAt(std::FILE* file, u64 offset, void* bytes, std::size_t size) {
    return std::fseek(file, static_cast<long>(offset), SEEK_SET) == 0 &&
           std::fread(bytes, 1, size, file) == size;
}

std::string cutOff(const char* part, u64 end, u64 size) {
    return std::string("is cut off: ") + part + " ends at byte " + std::to_string(end) + " of " +
           std::to_string(size);
}

std::string whyNotFor(const ElfFileHeader& header) {
    if (std::memcmp(header.e_ident.data(),
                    "\x7F"
                    "ELF",
                    4) != 0) {
        return "is not an ELF file";
    }
    if (header.e_ident[4] != class32 || header.e_ident[5] != leastSignificantFirst ||
        header.e_machine != mips) {
        return "is not for this machine: it takes 32-bit little-endian MIPS programs";
    }
    if (header.e_type != executable) {
        return "is not a program, but an object file or a library";
    }
    return "";
}

}  // namespace

std::string whyNotProgram(const char* path) {
    const FilePtr file = openInputFile(path);
    if (file == nullptr) {
        return std::string("cannot be opened: ") + std::strerror(errno);
    }
    std::fseek(file.get(), 0, SEEK_END);
    const auto size = static_cast<u64>(std::max(std::ftell(file.get()), 0L));
    if (size == 0) {
        return "is empty";
    }
    ElfFileHeader header;
    const bool whole = readAt(file.get(), 0, &header, sizeof header);
    if (std::string reason = whyNotFor(header); !reason.empty() || !whole) {
        return reason.empty() ? "is cut off in its header" : reason;
    }
    bool loads = false;
    for (u32 i = 0; i < header.e_phnum; ++i) {
        ElfProgramHeader segment;
        if (!readAt(file.get(), u64{header.e_phoff} + u64{i} * sizeof segment, &segment, sizeof segment)) {
            return "is cut off in its program headers";
        }
        if (segment.p_type == loadable && u64{segment.p_offset} + segment.p_filesz > size) {
            return cutOff("a segment", u64{segment.p_offset} + segment.p_filesz, size);
        }
        loads = loads || (segment.p_type == loadable && segment.p_filesz != 0);
    }
    const u64 sectionsEnd = u64{header.e_shoff} + u64{header.e_shnum} * sizeof(ElfSectionHeader);
    if (header.e_shnum != 0 && sectionsEnd > size) {
        return cutOff("the table of sections", sectionsEnd, size);
    }
    return loads ? "" : "has nothing to load";
}

}  // namespace tarn
