// The system call table, held against an independent picture of it, and each call's work and words.
#include "kernel/syscalls.h"
#include "machine/devices.h"
#include "support/machine_test.h"

#include <set>

namespace tarn::test {
namespace {

class KernelTest : public MachineTest {
  protected:
    /// Performs the call that v1 names from PC 0x100400 and returns what it prints.
    static std::string call(u64 v1, u8 logging = 0) {
        Settings.debug_print_syscall = logging;
        MipsCpu.PC = 0x100400;
        MipsCpu.pause = 0;
        MipsCpu.GPR[REG_V1].low = v1;
        return outputOf(syscall_fct[v1 & 0xFF]);
    }
    static u64& v0() { return MipsCpu.GPR[REG_V0].low; }
    static u64& a0() { return MipsCpu.GPR[REG_A0].low; }
    static u64& a1() { return MipsCpu.GPR[REG_A1].low; }
    static u64& sp() { return MipsCpu.GPR[REG_SP].low; }
};

/// Which calls are there, and which are served, the guide to guest programming says.
TEST_F(KernelTest, EveryNumberStopsOrGoesOnInWords) {
    sp() = 0x81F00000;
    std::set<std::string> names;
    int served = 0;
    for (int number = 0; number < 256; ++number) {
        const std::string name = debug_syscall[static_cast<std::size_t>(number)];
        names.insert(name);
        const bool exists = name != "SYSCALL_NI";
        const std::string code = hex(static_cast<u64>(number));
        const std::string asSigned = std::to_string(number < 128 ? number : number - 256);
        const std::string line = exists ? "00100400 : " + name + " 0x" + code + " " + asSigned + " \n"
                                        : "00100400 : Syscall_NI ( " + code + " h) s8:" + asSigned +
                                              " u8:" + std::to_string(number) + "\n";
        for (u8 logging : {u8{0}, u8{1}, u8{2}}) {
            // Only the low byte counts. Call 0x78 has a line that does not depend on logging.
            const std::string printed = call(~u64{0xFF} | static_cast<u64>(number), logging);
            EXPECT_EQ(printed.substr(0, printed.find('|')), !exists || logging == 1 ? line : "");
            EXPECT_TRUE(!exists || logging == 1 || number == 0x78 || printed.empty()) << number;
            EXPECT_EQ(MipsCpu.PC, MipsCpu.pause != 0 ? 0x100400U : 0x100404U) << number;
        }
        served += MipsCpu.pause == 0;
    }
    EXPECT_TRUE(served == 15 && names.size() == 137);
    EXPECT_EQ(debug_syscall[0x29], std::string("SYSCALL_ChangeThreadPriority"));
    EXPECT_EQ(debug_syscall[0xE6], std::string("SYSCALL__iEnableIntc"));
}

/// What the guest program that makes all the calls does not show.
TEST_F(KernelTest, ServedCallsTakeWholeRegisters) {
    constexpr u64 kept = 0xFEEDFACE12345678, stack = 0xFFFFFFFF81F00000, handler = 0xFFFFFFFF80105000;
    constexpr struct {
        u64 number, a0, a1, v0;
        const char* line;
    } calls[] = {
        {0x12, 10, 1, kept, "|channel: 10, Address: 0x00000001\n"},
        {0x12, ~u64{0}, 1, kept, "|channel: -1, Address: 0x00000001\n"},
        {0x12, 0x500000005, handler, kept, "|channel: 21474836485, Address: 0xffffffff80105000\n"},
        {0x12, 0x105, 1, kept, "|channel: 261, Address: 0x00000001\n"},
        {0x12, 3, 1, kept, "|channel:  3, Address: 0x00000001\n"},
        {0x3C, 1, 2, stack, ""},
        {0x3D, 0xFFFFFFFF, 1, 0x100000000, ""},
        {0x77, 0x1234, 2, kept, "|A0\t= 1234, A1 = 2 \n"},
    };
    sp() = stack;
    for (const auto& [number, first, second, result, line] : calls) {
        a0() = first;
        a1() = second;
        MipsCpu.GPR[REG_V0] = {kept, 7};
        const std::string printed = call(number, 1);
        EXPECT_EQ(printed.substr(printed.find('\n') + 1), line);
        EXPECT_EQ(MipsCpu.GPR[REG_V0], (GuestValue{result, 7})) << number;
    }
    EXPECT_EQ(Ps2Bios.dmacHandler[5].handlerAddress, handler);
    EXPECT_EQ(Ps2Bios.dmacHandler[3].handlerAddress, 1U);
}

TEST_F(KernelTest, EnableDmacReplacesTheStatusByItsMaskBit) {
    constexpr struct {
        u64 channel, status, result, after;
    } cases[] = {
        {2, 0x40000, 0, 0x40000},        {2, 1, 1, 0x40000},  {15, 0, 1, 0xFFFFFFFF80000000},
        {15, 1ULL << 40, 0, 1ULL << 40}, {16, ~u64{0}, 1, 0}, {34, 0, 1, 0x40000},
    };
    for (const auto& [channel, status, result, after] : cases) {
        MipsMemoryWrite({status, 0}, Width::Doubleword, specialAreaFirst + dma_register::D_STAT, 0);
        DmaUpdate();
        a0() = channel;
        v0() = ~u64{0};
        EXPECT_EQ(call(0x16), "");
        EXPECT_EQ(v0(), result);
        EXPECT_EQ(doublewordAt(specialAreaFirst + dma_register::D_STAT), after);
    }
    restart();
    Settings.debug_dma = 1;
    EXPECT_EQ(call(0x16), "00100400:DMA Acces ( read  ):1000 e010 h: 0\n"
                          "00100400:DMA Acces ( write ):1000 e010 h: DMAC Status = 10000 NI\n");
}

TEST_F(KernelTest, SifSetDChainGoesThroughTheDmaRegisters) {
    sp() = 0x00200000;
    Ps2Bios.dmaChannel[5].qwc = 9;
    call(0x78);
    EXPECT_EQ(a0(), 0x184U);
    EXPECT_EQ(doublewordAt(0x001FFFF0), 0x84U);
    EXPECT_EQ(Ps2Bios.dmaChannel[5].qwc, 0U);
    sp() = 16;  // a stack that is nowhere pauses, but the call is over
    call(0x78);
    EXPECT_EQ(MipsCpu.pause, 1);
    EXPECT_EQ(MipsCpu.PC, 0x100404U);
}

TEST_F(KernelTest, SifSetDmaGoesByTheLowByte) {
    Ps2Bios.dmacHandler[5].handlerAddress = 0x00105000;
    a1() = 0x101;
    call(0x77);
    EXPECT_EQ(outputOf(DmaUpdate), "DMA:Sif_0 : Start\n|DmaHandler Add: 00105000\n");
    EXPECT_EQ(MipsCpu.PC, 0x00105000U);
    EXPECT_EQ(Ps2Bios.dmacHandler[5].savedPc, 0x100404U);
}

}  // namespace
}  // namespace tarn::test
