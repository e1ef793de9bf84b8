// Loading: what is copied where, and what hostile files may not do.
#include "support/machine_test.h"
#include "support/run_directory.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <sys/stat.h>

namespace tarn::test {
namespace {

constexpr u32 contentsAt = 0x1000;  ///< of the ELF files below

class LoaderTest : public MachineTest {
  protected:
    RunDirectory directory;
    std::vector<ElfProgramHeader> segments;
    std::vector<ElfSectionHeader> sections;

    /// Opens an ELF file of the header, the segments and sections, and `contents`, and reads the headers.
    u8 load(const std::string& contents, const ElfFileHeader& header) {
        std::string image(contentsAt, '\0');
        std::memcpy(image.data(), &header, sizeof header);
        const std::span bytes = std::as_writable_bytes(std::span(image));
        std::ranges::copy(std::as_bytes(std::span(segments)), bytes.begin() + 0x100);
        std::ranges::copy(std::as_bytes(std::span(sections)), bytes.begin() + 0x800);
        directory.write("guest.elf", image + contents);
        ElfOpenFile("guest.elf");
        makePanes();
        return ElfLoadHeader();
    }
    u8 load(const std::string& contents) {
        return load(contents, {.e_entry = 0x00100040,
                               .e_phoff = 0x100,
                               .e_shoff = 0x800,
                               .e_phnum = static_cast<u16>(segments.size()),
                               .e_shnum = static_cast<u16>(sections.size())});
    }
    void addSegment(u32 offset, u32 address, u32 size) {
        segments.push_back({.p_offset = offset, .p_paddr = address, .p_filesz = size, .p_memsz = size + 100});
    }
    void addSection(u32 offset, u32 address, u32 size) {
        sections.push_back({.sh_addr = address, .sh_offset = offset, .sh_size = size});
    }
    /// Runs both copies and expects their lines, with these numbers of errors.
    static void expectCopies(u64 segmentErrors, u64 sectionErrors) {
        makePanes();
        CopyProgramToMemory();
        CopySectionToMemory();
        const auto done = [](u64 errors) {
            return errors == 0 ? "Done" : "Done with " + std::to_string(errors) + " errors";
        };
        const std::string program = "Init:Copy Program To Memory: ",
                          section = "Init:Copy Section To Memory: ";
        EXPECT_EQ(emuOutput(),
                  (Lines{program, program + done(segmentErrors), section, section + done(sectionErrors)}));
    }
};

TEST_F(LoaderTest, OpeningAndClosingReport) {
    directory.write("small", std::string(1024, 'x'));
    ElfCloseFile();  // not open: nothing to report
    BiosCloseFile();
    EXPECT_EQ(ElfOpenFile("small"), 1);
    EXPECT_EQ(Loader.ElfFileSize, 1024);
    EXPECT_EQ(BiosOpenFile("small"), 1);
    for (int twice = 0; twice < 2; ++twice) {
        ElfCloseFile();
        BiosCloseFile();
    }
    // Neither a missing file nor a directory can be loaded from, nor a FIFO, which must not be waited for.
    EXPECT_EQ(ElfOpenFile("/no/such/file"), 0);
    EXPECT_EQ(ElfOpenFile("/tmp"), 0);
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    EXPECT_EQ(BiosOpenFile("fifo"), 0);
    EXPECT_EQ(BiosOpenFile(""), 0);
    EXPECT_EQ(BiosOpenFile("/dev/ptmx"), 0);
    EXPECT_EQ(emuOutput(),
              (Lines{"File:Opening Elf : small ( size : 1.000 Ko)",
                     "File:Opening BIOS : small ( size : 1.000 Ko)", "File:Close Elf File",
                     "File:Close Bios File", "File:Error opening :/no/such/file: No such file or directory",
                     "File:Error opening :/tmp: Is a directory", "File:Error opening fifo",
                     "File:Error opening ", "File:Error opening /dev/ptmx"}));
    EXPECT_EQ(ElfLoadHeader(), 1);  // there is no file
    expectCopies(0, 0);
    CopyBiosToMemory();
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
    } parts[] = {{contentsAt, 0x100000, 16, 0, 0},
                 {contentsAt, 0x100000, 17, 1, 1},
                 {0xFFFFFFFF, 0x100000, 1000, 1000, 1000},
                 {contentsAt + 16, 0, 0x2000000, 0x2000000, 1},
                 {contentsAt, 1, 0x2000000, 1, 1},
                 {contentsAt, 0x1FFFFEE, 16, 0, 0},
                 {contentsAt, 0x1FFFFEF, 16, 0, 1},
                 {0, 0xFFFFFFF0, 0x20, 1, 1},  // sums that are small in 32 bits
                 {0, 0x80000000, 0x80000010, 1, 1}};
    for (const auto& [offset, address, size, segmentErrors, sectionErrors] : parts) {
        SCOPED_TRACE(hex(address) + " size " + hex(size));
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
        EXPECT_EQ(emuOutput()[3], errors == 0 ? "File:Read Elf Header DONE" : "File:Read Elf Header ERROR");
        CopyProgramToMemory();
        CopySectionToMemory();
    }
    restart();
    ElfOpenFile("/dev/null");
    EXPECT_EQ(ElfLoadHeader(), 1);
}

TEST_F(LoaderTest, BiosImagesOfAnyLengthFillAtMostTheirArea) {
    for (const u32 length : {0U, 1U, biosMemorySize, biosMemorySize + (1U << 20)}) {
        restart();
        directory.write("bios", std::string(length, 'b'));
        BiosOpenFile("bios");
        CopyBiosToMemory();
        EXPECT_EQ(emuOutput().back(), "Init:Copy BIOS To Memory:...Done");
        EXPECT_EQ(std::count(BiosMemory.begin(), BiosMemory.end(), 'b'), std::min(length, biosMemorySize));
    }
}

}  // namespace
}  // namespace tarn::test
