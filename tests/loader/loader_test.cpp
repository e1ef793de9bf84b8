// Loading: what is copied where, and what hostile files may not do.
#include "support/machine_test.h"
#include "support/temporary_file.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <sys/stat.h>

namespace tarn {
namespace {

using test::Lines;
using test::TemporaryFile;

constexpr u32 contentsAt = 0x1000;  ///< of the ELF files below

class LoaderTest : public test::MachineTest {
  protected:
    std::vector<ElfProgramHeader> segments;
    std::vector<ElfSectionHeader> sections;
    std::optional<TemporaryFile> file;

    /// Opens an ELF file of the segments and sections, and `contents`, its header perhaps
    /// replaced, and reads the headers.
    u8 load(const std::string& contents, std::optional<ElfFileHeader> unusual = {}) {
        const ElfFileHeader regular{.e_entry = 0x00100040,
                                    .e_phoff = 0x100,
                                    .e_shoff = 0x800,
                                    .e_phnum = static_cast<u16>(segments.size()),
                                    .e_shnum = static_cast<u16>(sections.size())};
        const ElfFileHeader header = unusual.value_or(regular);
        std::string image(contentsAt, '\0');
        std::memcpy(image.data(), &header, sizeof header);
        const auto put = [&](u32 at, const auto& table) {
            const auto bytes = std::as_bytes(std::span(table));
            std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::byte*>(image.data() + at));
        };
        put(0x100, segments);
        put(0x800, sections);
        file.emplace(image + contents);
        ElfOpenFile(file->path());
        test::makePanes();
        return ElfLoadHeader();
    }
    void addSegment(u32 offset, u32 address, u32 size) {
        segments.push_back({.p_offset = offset, .p_paddr = address, .p_filesz = size, .p_memsz = size + 100});
    }
    void addSection(u32 offset, u32 address, u32 size) {
        sections.push_back({.sh_addr = address, .sh_offset = offset, .sh_size = size});
    }
    /// Runs both copies and expects their lines, with these numbers of errors.
    static void expectCopies(u64 segmentErrors, u64 sectionErrors) {
        test::makePanes();
        CopyProgramToMemory();
        CopySectionToMemory();
        const auto done = [](u64 errors) {
            return errors == 0 ? "Done" : "Done with " + std::to_string(errors) + " errors";
        };
        const std::string program = "Init:Copy Program To Memory: ";
        const std::string section = "Init:Copy Section To Memory: ";
        EXPECT_EQ(emuOutput(),
                  (Lines{program, program + done(segmentErrors), section, section + done(sectionErrors)}));
    }
};

TEST_F(LoaderTest, OpeningAndClosingReport) {
    const TemporaryFile small(std::string(1024, 'x'));
    const std::string path = small.path(), fifo = path + ".fifo";
    ElfCloseFile();  // not open: nothing to report
    BiosCloseFile();
    EXPECT_EQ(ElfOpenFile(small.path()), 1);
    EXPECT_EQ(Loader.ElfFileSize, 1024);
    EXPECT_EQ(BiosOpenFile(small.path()), 1);
    for (int twice = 0; twice < 2; ++twice) {
        ElfCloseFile();
        BiosCloseFile();
    }
    // Neither a missing file nor a directory can be loaded from, nor a FIFO, which must not be waited for.
    EXPECT_EQ(ElfOpenFile("/no/such/file"), 0);
    EXPECT_EQ(BiosOpenFile("/no/such/file"), 0);
    EXPECT_EQ(ElfOpenFile("/tmp"), 0);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(BiosOpenFile(fifo.c_str()), 0);
    unlink(fifo.c_str());
    EXPECT_EQ(emuOutput(),
              (Lines{"File:Opening Elf : " + path + " ( size : 1.000 Ko)",
                     "File:Opening BIOS : " + path + " ( size : 1.000 Ko)", "File:Close Elf File",
                     "File:Close Bios File", "File:Error opening :/no/such/file: No such file or directory",
                     "File:Error opening /no/such/file", "File:Error opening :/tmp: Is a directory",
                     "File:Error opening " + fifo}));
}

TEST_F(LoaderTest, SegmentsThenSectionsAreCopied) {
    addSegment(contentsAt, 0x100000, 13);
    addSegment(contentsAt, 0x1FFFFF8, 8);
    addSection(contentsAt + 15, 0x100002, 7);
    addSection(contentsAt, 0, 7);
    std::memset(MipsMemory + 0x10000D, '.', 2);  // beyond the segment's file image: stays
    EXPECT_EQ(load("segment bytes, section bytes"), 0);
    EXPECT_EQ(emuOutput(),
              (Lines{"File:Read Elf Header ", "File:Read Elf Program Header Numero 0 to 2",
                     "File:Read Elf Section Header Numero 0 to 2", "File:Read Elf Header DONE"}));
    EXPECT_EQ(MipsCpu.entry, 0x00100040U);
    expectCopies(0, 0);
    EXPECT_EQ(std::memcmp(MipsMemory + 0x100000, "sesectionytes..", 16), 0);
    EXPECT_EQ(std::memcmp(MipsMemory + 0x1FFFFF8, "segment ", 8), 0);
    EXPECT_EQ(std::memcmp(MipsMemory, "segment", 8), 0);
}

TEST_F(LoaderTest, PartsOutsideMemoryAndMissingBytesAreCounted) {
    constexpr struct {
        u32 offset, address, size;
        u64 segmentErrors, sectionErrors;
    } parts[] = {
        {contentsAt, 0x100000, 16, 0, 0},
        {contentsAt, 0x100000, 17, 1, 1},
        {0xFFFFFFFF, 0x100000, 1000, 1000, 1000},
        {contentsAt + 16, 0, 0x2000000, 0x2000000, 1},
        {contentsAt, 1, 0x2000000, 1, 1},
        {contentsAt, 0x1FFFFEE, 16, 0, 0},
        {contentsAt, 0x1FFFFEF, 16, 0, 1},
        {0, 0, 0xFFFFFFFF, 1, 1},
        {0, 0xFFFFFFF0, 0x20, 1, 1},  // sums that are small in 32 bits
        {0, 0x80000000, 0x80000010, 1, 1},
    };
    for (const auto& [offset, address, size, segmentErrors, sectionErrors] : parts) {
        SCOPED_TRACE(test::hex(address) + " size " + test::hex(size));
        segments.clear();
        sections.clear();
        addSegment(offset, address, size);
        addSection(offset, address, size);
        EXPECT_EQ(load(std::string(16, 'x')), 0);
        expectCopies(segmentErrors, sectionErrors);
    }
}

TEST_F(LoaderTest, HeadersThatAreMissingOrHaveNoRoomAreErrors) {
    constexpr struct {
        u16 phnum, shnum;
        u32 shoff;
        u8 errors;
    } tables[] = {{30, 30, 0x800, 0},           {31, 30, 0x800, 1},    {30, 33, 0x800, 3},
                  {0, 30, contentsAt - 40, 29}, {0, 2, 0xFFFFFFFF, 2}, {0, 1, contentsAt - 39, 1},
                  {65535, 65535, 0, 255}};
    for (const auto& [phnum, shnum, shoff, errors] : tables) {
        restart();
        EXPECT_EQ(load("", ElfFileHeader{.e_shoff = shoff, .e_phnum = phnum, .e_shnum = shnum}), errors);
        EXPECT_EQ(emuOutput()[1], "File:Read Elf Program Header Numero 0 to " + std::to_string(phnum));
        EXPECT_EQ(emuOutput()[2], "File:Read Elf Section Header Numero 0 to " + std::to_string(shnum));
        EXPECT_EQ(emuOutput()[3], errors == 0 ? "File:Read Elf Header DONE" : "File:Read Elf Header ERROR");
        CopyProgramToMemory();
        CopySectionToMemory();
    }
    restart();
    ElfOpenFile("/dev/null");
    test::makePanes();
    EXPECT_EQ(ElfLoadHeader(), 1);
    EXPECT_EQ(emuOutput(),
              (Lines{"File:Read Elf Program Header Numero 0 to 0",
                     "File:Read Elf Section Header Numero 0 to 0", "File:Read Elf Header ERROR"}));
}

TEST_F(LoaderTest, BiosImagesOfAnyLengthFillAtMostTheirArea) {
    for (u32 length : {0U, 1U, biosMemorySize, biosMemorySize + (1U << 20)}) {
        restart();
        const TemporaryFile image(std::string(length, 'b'));
        BiosOpenFile(image.path());
        CopyBiosToMemory();
        EXPECT_EQ(emuOutput().back(), "Init:Copy BIOS To Memory:...Done");
        EXPECT_EQ(std::count(BiosMemory, BiosMemory + biosMemorySize, 'b'), std::min(length, biosMemorySize));
    }
}

}  // namespace
}  // namespace tarn
