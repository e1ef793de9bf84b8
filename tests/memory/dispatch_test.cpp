// Where loads and stores go: every boundary of every range at each width, and the words of what is refused;
// the GS trace, and the allocation of the areas.
#include "base/diagnostics.h"
#include "machine/devices.h"
#include "support/machine_test.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace tarn::test {
namespace {

constexpr GuestValue pattern{0x8877665544332211, 0xFFEEDDCCBBAA9988};
constexpr GuestValue untouched{0x0123456789ABCDEF, 0xFEDCBA9876543210};
constexpr std::array widths{Width::Quadword, Width::Doubleword,     Width::Word, Width::Halfword,
                            Width::Byte,     Width::HighDoubleword, Width{0},    Width{3}};

enum class Area { None, Main, Special, Gs, Bios };

/// An address, what it means to stores and to loads, and the address that the message of an unmapped one
/// names.
struct Place {
    u32 address;
    Area store, load;
    u32 offset, named;
};

constexpr Place none(u32 address, u32 named) { return {address, Area::None, Area::None, 0, named}; }
constexpr Place none(u32 address) { return none(address, address); }
constexpr Place main(u32 address, u32 offset, u32 named) {
    return {address, Area::Main, Area::Main, offset, named};
}
constexpr Place main(u32 address, u32 offset) { return main(address, offset, address); }
constexpr Place special(u32 address) { return {address, Area::Special, Area::Special, address & 0xFFFF, 0}; }
constexpr Place gs(u32 address) { return {address, Area::Gs, Area::Gs, 0, 0}; }
constexpr Place bios(u32 address, u32 offset) { return {address, Area::None, Area::Bios, offset, address}; }

// clang-format off
constexpr Place places[] = {
    none(0), none(0x000FFFFF), main(0x00100000, 0x100000), main(0x01FFFFF0, 0x1FFFFF0), main(0x01FFFFF1, 0x1FFFFF1),
    main(0x01FFFFF9, 0x1FFFFF9), main(0x01FFFFFD, 0x1FFFFFD), main(0x01FFFFFE, 0x1FFFFFE), none(0x01FFFFFF),
    none(0x02000000), none(0x0FFFFFFF), special(0x10000000), special(0x10007FFC), special(0x10008000),
    special(0x1000FFF8), special(0x1000FFF9), special(0x1000FFFC), special(0x1000FFFD), special(0x1000FFFE),
    {0x1000FFFF, Area::Special, Area::None, 0xFFFF, 0x1000FFFF},  // writable but not readable
    none(0x10010000), none(0x11FFFFFF), gs(0x12000000), gs(0x12001080), none(0x12001081), none(0x1FBFFFFF), bios(0x1FC00000, 0),
    bios(0x1FFFFFFC, 0x3FFFFC), bios(0x1FFFFFFD, 0x3FFFFD), bios(0x1FFFFFFE, 0x3FFFFE), none(0x1FFFFFFF),
    none(0x200FFFFF), main(0x20100000, 0x100000), main(0x21FFFFFE, 0x1FFFFFE), none(0x21FFFFFF), none(0x22100000),
    none(0x300FFFFF), main(0x30100000, 0x100000), main(0x31FFFFFE, 0x1FFFFFE), none(0x31FFFFFF), none(0x7FFFFFFF),
    none(0x80000000, 0), none(0x800FFFFF, 0xFFFFF), main(0x80100000, 0x100000), main(0x81FFFFFE, 0x1FFFFFE, 0x1FFFFFE),
    none(0x81FFFFFF, 0x1FFFFFF), main(0x82100000, 0x100000), main(0x9FBFFFF0, 0x1BFFFF0),
    {0x9FC00000, Area::Main, Area::Bios, 0x1C00000, 0}, {0x9FFFFFFE, Area::Main, Area::Bios, 0x1FFFFFE, 0x1FFFFFE},
    none(0x9FFFFFFF), none(0xA0100000), bios(0xBFC00000, 0), bios(0xBFFFFFFE, 0x3FFFFE), none(0xBFFFFFFF),
    none(0xFFFFFFFF),
};
// clang-format on

u8* bufferOf(Area area) {
    return area == Area::Main ? MipsMemory : area == Area::Special ? SpecialAreaMemory : BiosMemory;
}

u32 sizeOf(Area area) {
    return area == Area::Main ? mainMemorySize : area == Area::Special ? specialAreaSize : biosMemorySize;
}

/// Whether the area takes the width and holds all of the access.
bool serves(Area area, u32 offset, Width width) {
    const bool known = width != Width{0} && width != Width{3};
    const bool device =
        width == Width::Word || width == (area == Area::Bios ? Width::Byte : Width::Doubleword);
    return area != Area::None && (area == Area::Main ? known : device) &&
           offset + bytesOf(width) <= sizeOf(area);
}

std::string refusal(Area area, Width width, const std::string& access, u32 named) {
    const char* areas[] = {"", "Mem:", "MemSpecial:", "MemGSArea:", "MemBIOS:"};
    const bool byAddress = area == Area::None || (area == Area::Main && bytesOf(width) != 0);
    return byAddress ? "Mem:" + access + ":NEED SPECIAL HANDLE ADD :  " + hex(named) + "\n"
                     : areas[static_cast<int>(area)] + access + " DataType Not Handled\n";
}

TEST_F(MachineTest, StoresReachTheirAreaOrAreRefusedInWords) {
    for (const auto& [address, area, load, offset, named] : places) {
        for (Width width : widths) {
            SCOPED_TRACE(hex(address) + " width " + std::to_string(int(width)));
            resetRecords();
            const bool served = serves(area, offset, width);
            // Neither the split into base and displacement matters nor what is above bit 31.
            const std::string printed = outputOf([&, at = address] {
                MipsMemoryWrite(pattern, width, 0x1200000000 + u64{at} + 0x7FF0, -0x7FF0);
            });
            const std::string message = served ? "" : refusal(area, width, "Write", named);
            // Of main memory and of nothing, in the pane; of a device, on standard output.
            const bool inPane = area == Area::Main || area == Area::None;
            EXPECT_EQ(printed, inPane ? "" : message);
            EXPECT_EQ(joined(emuOutput()), inPane ? message : "");
            EXPECT_EQ(MipsCpu.pause, served ? 0 : 1);
            const bool seenByDma = area == Area::Special && offset >= 0x8000;
            EXPECT_TRUE(Ps2Bios.dmaWritePending == seenByDma &&
                        Ps2Bios.dmaWriteOffset == (seenByDma ? offset : 0) &&
                        Ps2Bios.dmaWriteValue == (seenByDma ? pattern.low : 0));
            if (area != Area::None && area != Area::Gs) {
                u8 expected[17] = {};  // the byte after the access stays as it was
                const auto bytes = std::bit_cast<std::array<u8, 16>>(pattern);
                std::memcpy(expected, bytes.data() + (width == Width::HighDoubleword ? 8 : 0),
                            served ? bytesOf(width) : 0);
                const u32 seen = std::min(17U, sizeOf(area) - offset);
                EXPECT_EQ(std::memcmp(bufferOf(area) + offset, expected, seen), 0);
                std::memset(bufferOf(area) + offset, 0, seen);
            }
        }
    }
}

TEST_F(MachineTest, LoadsComeFromTheirAreaOrAreRefusedInWords) {
    for (u32 at = 0; at < biosMemorySize; ++at) {
        BiosMemory[at] = static_cast<u8>(at * 7 + (at >> 16));
    }
    for (u32 at : {0x100000U, 0x1BFFFF0U, 0x1FFFFF0U}) {
        std::memcpy(MipsMemory + at, &pattern, 16);
    }
    std::memcpy(SpecialAreaMemory + 0x8000, &pattern, 16);
    for (const auto& [address, store, area, place, named] : places) {
        for (Width width : widths) {
            SCOPED_TRACE(hex(address) + " width " + std::to_string(int(width)));
            const u32 offset = area == Area::Bios ? place & 0x3FFFFF : place;
            MipsCpu.pause = 0;
            Ps2Bios = {};
            const bool served = serves(area, offset, width);
            GuestValue expected = untouched;
            if (served && area == Area::Gs) {
                expected.low = 0;
            } else if (served) {
                u8* half =
                    reinterpret_cast<u8*>(width == Width::HighDoubleword ? &expected.high : &expected.low);
                std::memset(half, 0, width == Width::Quadword ? 16 : 8);
                std::memcpy(half, bufferOf(area) + offset, bytesOf(width));
            }
            GuestValue destination = untouched;
            const std::string printed = outputOf(
                [&, at = address] { MipsMemoryRead(&destination, width, u64{at} - 0x7FFF, 0x7FFF); });
            EXPECT_EQ(destination, expected);
            EXPECT_EQ(printed, served ? "" : refusal(area, width, "Read", named));
            EXPECT_EQ(MipsCpu.pause, served ? 0 : 1);
            const bool seenByDma = area == Area::Special && offset >= 0x8000;
            EXPECT_TRUE(Ps2Bios.dmaReadPending == seenByDma &&
                        Ps2Bios.dmaReadOffset == (seenByDma ? offset : 0) &&
                        Ps2Bios.dmaReadValue == (seenByDma ? expected.low : 0));
        }
    }
    EXPECT_TRUE(emuOutput().empty());
}

TEST_F(MachineTest, GsAccessesReachTheRendererAndAreTraced) {
    MipsCpu.PC = 0x100008;
    for (u8 flag : {u8{0}, u8{1}, u8{2}}) {
        Settings.debug_gs = flag;
        Gs.interlace = 0;
        GuestValue destination{~u64{0}, 7};
        const std::string printed = outputOf([&] {
            MipsMemoryWrite({0x300000001, 9}, Width::Doubleword, gs_privileged::PMODE, 0);
            MipsMemoryWrite({0x300000002, 9}, Width::Word, gs_privileged::PMODE, 0);
            MipsMemoryRead(&destination, Width::Word, gsAreaFirst, 0x400);  // which 64 bits would flip
            MipsMemoryRead(&destination, Width::Word, 0xFFFFFFFF12000000, 0x1000);
            MipsMemoryRead(&destination, Width::Doubleword, gs_privileged::CSR, 0);
        });
        EXPECT_TRUE(Gs.pmode == 1 && destination == (GuestValue{8, 7}));
        EXPECT_EQ(printed, flag != 1 ? ""
                                     : "00100008: GSwrite64 at 12000000 with 300000001\n"
                                       "00100008: GSwrite32 at 12000000 with 300000002\n"
                                       "00100008: GSread32 at 12000400 with 0\n"
                                       "00100008: GSread32 at ffffffff12001000 with 8\n"
                                       "00100008: GSread64 at 12001000 with 8\n");
    }
}

TEST_F(MachineTest, TheSerialPortTakesWordsAndMakesLinesOfThem) {
    Settings.console = 1;
    const auto say = [](const std::string& text) {
        for (const char letter : text) {
            MipsMemoryWrite({0xFFFFFF00U | static_cast<u8>(letter), 0}, Width::Word,
                            specialAreaFirst + consoleTransmit, 0);
        }
    };
    const std::string longest(1000, 'x');
    say("one\n\n" + longest + "y");
    PrintToEmuOutput("another");
    EXPECT_EQ(emuOutput(), (Lines{"one", "", longest, "y", "another"}));
    MipsMemoryWrite({0x41, 0}, Width::Doubleword, specialAreaFirst + consoleTransmit, 0);
    EXPECT_EQ(doublewordAt(specialAreaFirst + consoleTransmit), 0x41U);
}

TEST_F(MachineTest, AllocationReportsSuccessAndFailure) {
    const auto allocateAll = [] {
        makePanes();
        return MipsMemoryAlloc() + MipsSpecialAreaMemoryAlloc() + MipsGSAreaMemoryAlloc() +
               MipsBiosMemoryAlloc();
    };
    EXPECT_EQ(allocateAll(), 4);
    EXPECT_EQ(emuOutput().front(), "R5900:Allocation Main Memory 32 Mbits...OK");
    reset(machine);
    EXPECT_TRUE(MipsMemory != nullptr && Gs.vRam != nullptr) << "the memory stays";
    const FailingAllocation failing;
    EXPECT_EQ(allocateAll(), 0);
    EXPECT_EQ(emuOutput(), (Lines{"R5900:Allocation Main Memory 32 Mbits...KO",
                                  "R5900:Allocation Special Memory 64 kbytes... KO",
                                  "RR5900:Allocation GS Register Memory 4288 bytes... kO",
                                  "R5900:Allocation BIOS Memory 4 M bytes... KO "}));
}

TEST_F(MachineTest, WithoutBuffersEveryAccessIsRefused) {
    FreeAllMemory();
    EXPECT_EQ(emuOutput(), Lines{"FreeMemory: Main - SpecialArea - GS Register - Bios"});
    GuestValue destination{1, 2};
    EXPECT_EQ(outputOf([&] {
                  MipsMemoryWrite({3, 4}, Width::Word, 0x00100000, 0);
                  MipsMemoryRead(&destination, Width::Word, 0x80100000, 0);
                  MipsMemoryWrite({3, 4}, Width::Word, specialAreaFirst + dma_register::D2_CHCR, 0);
                  DmaUpdate();
                  MipsMemoryRead(&destination, Width::Word, 0x1FC00000, 0);
              }),
              "Mem:Read:NEED SPECIAL HANDLE ADD :  100000\n"
              "MemSpecial:Write DataType Not Handled\nMemBIOS:Read DataType Not Handled\n");
    EXPECT_EQ(destination, (GuestValue{1, 2}));
}

}  // namespace
}  // namespace tarn::test
