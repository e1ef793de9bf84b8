// The GS trace, and the allocation of the areas.
#include "support/machine_test.h"

namespace tarn {
namespace {

using AreasTest = test::MachineTest;
using test::Lines;

TEST_F(AreasTest, GsAccessesReachTheRendererAndAreTraced) {
    MipsCpu.PC = 0x100008;
    for (u8 flag : {u8{0}, u8{1}, u8{2}}) {
        Settings.debug_gs = flag;
        GuestValue destination{~u64{0}, 7};
        const std::string printed = test::outputOf([&] {
            MipsMemoryWrite({0x300000001, 9}, Width::Doubleword, 0x12000000, 0);
            MipsMemoryWrite({0x300000002, 9}, Width::Word, 0x12000000, 0);
            MipsMemoryRead(&destination, Width::Word, 0xFFFFFFFF12000000, 0x1000);
            MipsMemoryRead(&destination, Width::Doubleword, 0x12001000, 0);
            MipsMemoryWrite({}, Width::Doubleword, 0x12001080, 0);
        });
        EXPECT_EQ(Gs.pmode, 1U);
        EXPECT_EQ(destination, (GuestValue{8, 7}));
        EXPECT_EQ(printed, flag != 1 ? ""
                                     : "00100008: GSwrite64 at 12000000 with 300000001\n"
                                       "00100008: GSwrite32 at 12000000 with 300000002\n"
                                       "00100008: GSread32 at ffffffff12001000 with 8\n"
                                       "00100008: GSread64 at 12001000 with 8\n"
                                       "00100008: GSwrite64 at 12001080 with 0\n");
    }
}

TEST_F(AreasTest, AllocationReportsSuccessAndFailure) {
    const auto allocateAll = [] {
        test::makePanes();
        return MipsMemoryAlloc() + MipsSpecialAreaMemoryAlloc() + MipsGSAreaMemoryAlloc() +
               MipsBiosMemoryAlloc();
    };
    EXPECT_EQ(allocateAll(), 4);
    EXPECT_EQ(emuOutput(), (Lines{"R5900:Allocation Main Memory 32 Mbits...OK",
                                  "R5900:Allocation Special Memory 64 kbytes... OK",
                                  "RR5900:Allocation GS Register Memory 4288 bytes... OK",
                                  "R5900:Allocation BIOS Memory 4 M bytes... OK "}));
    const test::FailingAllocation failing;
    EXPECT_EQ(allocateAll(), 0);
    EXPECT_EQ(emuOutput(), (Lines{"R5900:Allocation Main Memory 32 Mbits...KO",
                                  "R5900:Allocation Special Memory 64 kbytes... KO",
                                  "RR5900:Allocation GS Register Memory 4288 bytes... kO",
                                  "R5900:Allocation BIOS Memory 4 M bytes... KO "}));
}

TEST_F(AreasTest, WithoutBuffersEveryAccessIsRefused) {
    FreeAllMemory();
    EXPECT_EQ(emuOutput(), Lines{"FreeMemory: Main - SpecialArea - GS Register - Bios"});
    GuestValue destination{1, 2};
    const std::string printed = test::outputOf([&] {
        MipsMemoryWrite({3, 4}, Width::Word, 0x00100000, 0);
        MipsMemoryRead(&destination, Width::Word, 0x80100000, 0);
        MipsMemoryWrite({3, 4}, Width::Word, 0x1000A000, 0);
        DmaUpdate();
        MipsMemoryRead(&destination, Width::Word, 0x1FC00000, 0);
    });
    EXPECT_EQ(emuOutput().back(), "Mem:Write:NEED SPECIAL HANDLE ADD :  100000\n");
    EXPECT_EQ(printed, "Mem:Read:NEED SPECIAL HANDLE ADD :  100000\n"
                       "MemSpecial:Write DataType Not Handled\nMemBIOS:Read DataType Not Handled\n");
    EXPECT_EQ(destination, (GuestValue{1, 2}));
}

}  // namespace
}  // namespace tarn
