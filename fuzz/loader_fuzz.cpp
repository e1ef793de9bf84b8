// ELF and BIOS bytes through the loader. The first byte of an input chooses: the rest is an ELF file as it
// is, a description of ELF tables, or a BIOS image.
#include "support.h"

#include <vector>

namespace tarn {
namespace {

// Places and sizes at which something changes, in the file and in main memory.
constexpr u32 fileOffsets[] = {0,     1,     52,         0x100,      0x500,     0x9FF,
                               0xA00, 0xA01, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
constexpr u32 addresses[] = {0,          1,          0x00100000, 0x01FFFFEE, 0x01FFFFFD,
                             0x01FFFFFE, 0x01FFFFFF, 0x2000000,  0x2000001,  0x7FFFFFFF,
                             0x80000000, 0x81F00000, 0xFFFFFFF0, 0xFFFFFFFF};
constexpr u32 sizes[] = {0,         1,         16,        0x100,      0x1000,     0x1FFFFFD,  0x1FFFFFE,
                         0x1FFFFFF, 0x2000000, 0x2000001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
constexpr u32 counts[] = {0, 1, 2, 29, 30, 31, 32, 285, 0xFFFF};

/// An ELF file with a header, both tables and a few bytes of contents, its fields chosen by the input.
std::vector<u8> buildElf(fuzz::Input& input) {
    ElfFileHeader header{.e_entry = input.take<u32>()};
    header.e_phoff = input.take<u8>() < 0xF0 ? 0x100 : input.pick(fileOffsets);
    header.e_shoff = input.take<u8>() < 0xF0 ? 0x500 : input.pick(fileOffsets);
    header.e_phnum = static_cast<u16>(input.pick(counts));
    header.e_shnum = static_cast<u16>(input.pick(counts));
    std::vector<u8> file(0xA00);
    std::memcpy(file.data(), &header, sizeof header);
    for (u32 entry = 0; entry < elfTableEntries && !input.empty(); ++entry) {
        const ElfProgramHeader segment{.p_offset = input.pick(fileOffsets),
                                       .p_paddr = input.pick(addresses),
                                       .p_filesz = input.pick(sizes)};
        const ElfSectionHeader section{.sh_addr = input.pick(addresses),
                                       .sh_offset = input.pick(fileOffsets),
                                       .sh_size = input.pick(sizes)};
        std::memcpy(file.data() + 0x100 + entry * sizeof segment, &segment, sizeof segment);
        std::memcpy(file.data() + 0x500 + entry * sizeof section, &section, sizeof section);
    }
    file.resize(file.size() - input.take<u16>() % file.size());
    return file;
}

void loadElf(const fuzz::MemoryFile& file, std::span<const u8> image) {
    file.assign(image);
    fuzz::require(ElfOpenFile(file.path()) == 1, "a regular file opens");
    ElfLoadHeader();
    CopyProgramToMemory();
    CopySectionToMemory();
    ElfCloseFile();
}

void loadBios(const fuzz::MemoryFile& file, std::span<const u8> image) {
    file.assign(image);
    BiosOpenFile(file.path());
    CopyBiosToMemory();
    const std::size_t copied = std::min<std::size_t>(image.size(), biosMemorySize);
    fuzz::require(
        std::equal(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(copied), BiosMemory.begin()),
        "the BIOS image is copied");
    BiosCloseFile();
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    static const fuzz::MemoryFile file;
    test::resetRecords();
    fuzz::Input input({data, size});
    const u8 kind = input.take<u8>() % 8;
    if (kind == 1) {
        loadBios(file, input.remaining());
    } else {
        loadElf(file, kind == 0 ? input.remaining() : buildElf(input));
    }
    return 0;
}
