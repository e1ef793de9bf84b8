// The DMA controller's registers and starts.
#include "dma/dma_controller.h"
#include "gs/registers.h"
#include "machine/devices.h"
#include "support/gs_machine.h"
#include "support/machine_test.h"

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

using namespace dma_register;

constexpr u32 unknownRegister = 0xB000;

class DmaTest : public test::MachineTest {
  protected:
    /// A guest's doubleword store to a DMA register, and what the controller prints about it.
    static std::string write(u32 offset, u64 value) {
        return test::outputOf([&] {
            MipsMemoryWrite({value, 0}, Width::Doubleword, specialAreaFirst + offset, 0);
            DmaUpdate();
        });
    }
};

TEST_F(DmaTest, RegistersAreCopiedAndLogged) {
    // clang-format off
    constexpr std::tuple<u32, const char*, u64 DmaChannelRegs::*> registers[] = {
        {D2_CHCR, "2_CHCRT", &DmaChannelRegs::chcr}, {D2_MADR, "2_MADR", &DmaChannelRegs::madr},
        {D2_QWC, "2_SIZE", &DmaChannelRegs::qwc}, {D2_TADR, "2_TAG", &DmaChannelRegs::tadr},
        {D2_ASR0, "2_ASR0", &DmaChannelRegs::asr0}, {D2_ASR1, "2_ASR1", &DmaChannelRegs::asr1},
        {D2_SADR, "2_SADR", &DmaChannelRegs::sadr}, {D5_CHCR, "5_CHCR", &DmaChannelRegs::chcr},
        {D5_MADR, "5_MADR", &DmaChannelRegs::madr}, {D5_QWC, "5_QWC", &DmaChannelRegs::qwc},
    };
    // clang-format on
    MipsCpu.PC = 0x100010;
    for (const auto& [offset, text, field] : registers) {
        for (u8 flag : {u8{0}, u8{1}, u8{2}}) {
            Settings.debug_dma = flag;
            const u64 value = 0xABCD0000000000FF + offset * 0x10000;
            const std::string line =
                "00100010:DMA Acces ( write ):1000 " + test::hex(offset) + " h: DmaChannel" + text + " = ";
            EXPECT_EQ(write(offset, value), flag == 1 ? line + test::hex(value) + "\n" : "");
            EXPECT_EQ(Ps2Bios.dmaChannel[text[0] == '2' ? gifChannel : sif0Channel].*field, value);
        }
    }
    EXPECT_EQ(nb_dma_transfert, 0U);
    MipsCpu.cycle = ~u64{0};
    Settings.debug_dma = 0;
    EXPECT_EQ(write(unknownRegister, 0x101), "DMA Adress Non-Impl.  1000b000 h (i:-1) \n");
    EXPECT_EQ(doublewordAt(specialAreaFirst + unknownRegister), 0x101U);
    Settings.debug_dma = 1;
    EXPECT_EQ(write(D_STAT, 3), "00100010:DMA Acces ( write ):1000 e010 h: DMAC Status = 3 NI\n"
                                "00100010:DMA Acces ( read  ):1000 b000 h: 101\n");
}

TEST_F(DmaTest, Channel2SendsInNormalModeAndAcknowledgesAlways) {
    constexpr struct {
        u64 control, address, quadwords, readBack;
        bool sent;
        const char* line;
    } starts[] = {
        {0x101, 0x1000, 2, 1, true, "GSgifTransfer 101 : Add:0000000000001000 size:2\n"},
        {0x7700000101, 0x1000, 0x100000002, 0x7700000001, true,
         "GSgifTransfer 101 : Add:0000000000001000 size:2\n"},
        {0x101, 0x1FFFFE0, 0xFFFFFFFF, 1, true,
         "GSgifTransfer 101 : Add:0000000001ffffe0 size:4294967295\n"},  // cut
        {0x101, 0x1FFFFF0, 2, 1, false, "GSgifTransfer 101 : Add:0000000001fffff0 size:2\n"},
        {0x101, 0x2000000, 2, 1, false, "GSgifTransfer 101 : Add:0000000002000000 size:2\n"},
        {0x105, 0x1000, 2, 5, false, "GSgifTransfer Not Handled : 05 \n"},     // a chain
        {0x141, 0x1000, 2, 0x41, false, "GSgifTransfer Not Handled : 41 \n"},  // with tags
        {0x100, 0x1000, 2, 0, false, "GSgifTransfer Not Handled : 00 \n"},     // to memory
    };
    for (const auto& [control, address, quadwords, readBack, sent, line] : starts) {
        restart();
        // A packet that sets FOGCOL: a tag, then one quadword of value and register.
        const u64 packet[] = {u64{1} << 60 | 0x8001, 0xE, 0x123456, 0x3D};
        const u64 at = std::min<u64>(address, mainMemorySize);
        std::memcpy(MipsMemory + at, packet, std::min<u64>(sizeof packet, mainMemorySize - at));
        write(D2_MADR, address);
        write(D2_QWC, quadwords);
        Settings.debug_dma = 1;
        EXPECT_EQ(write(D2_CHCR, control), "00000000:DMA Acces ( write ):1000 a000 h: DmaChannel2_CHCRT = " +
                                               test::hex(control) + "\n" + line);
        EXPECT_EQ(Gs.fogcol, sent ? 0x123456U : 0U);
        EXPECT_EQ(doublewordAt(specialAreaFirst + D2_CHCR), readBack);
        EXPECT_TRUE(Ps2Bios.dmaChannel[gifChannel].chcr == (readBack & 0xFFFFFFFF) && nb_dma_transfert == 1)
            << line;
    }
}

TEST_F(DmaTest, ALongTransferTakesManyStepsThatTheGuestDoesNotSee) {
    using enum test::GifStream::Form;
    constexpr u32 rectangles = 40;  // of nearly a million pixels each, then a move of as many
    test::GifStream stream;
    stream.write(gs_register::FRAME_1, 16 << 16).write(gs_register::SCISSOR_1, u64{1023} << 48 | 1023 << 16);
    stream.tag(packed, rectangles, 3, 0x551, test::GifStream::pre(6));
    for (u32 i = 0; i < rectangles; ++i) {
        stream.quadword(i, 0).quadword(0, 0).quadword(u64{0x3FF0} << 32 | 0x3FF0, 0);
    }
    stream.write(gs_register::BITBLTBUF, u64{16} << 48 | 16 << 16)
        .write(gs_register::TRXREG, u64{1023} << 32 | 512);
    stream.write(gs_register::TRXPOS, u64{512} << 32).write(gs_register::TRXDIR, localToLocal);
    std::memcpy(MipsMemory + 0x1000, stream.at(0), stream.quadwords() * 16);
    write(D2_MADR, 0x1000);
    write(D2_QWC, stream.quadwords());
    MipsCpu.PC = 0x100000;
    MipsMemoryWrite({0x101, 0}, Width::Doubleword, specialAreaFirst + D2_CHCR, 0);
    const u64 countdown = Ps2Bios.vsyncCountdown = vsyncPeriod;
    u32 calls = 1;
    const auto step = [&] { return calls % 2 == 1 ? driverStep() : runSteps(1) == 1; };
    for (u64 before = 0; !step(); before = Gs.work) {
        EXPECT_LT(Gs.work - before, gifStepWork + 2 * localMemoryWords);
        EXPECT_EQ(doublewordAt(specialAreaFirst + D2_CHCR), 0x101U);
        ASSERT_LT(++calls, 100U);
        MipsCpu.pause = 1;  // once begun, a step goes on to its end
    }
    EXPECT_TRUE(calls > 2 && MipsCpu.cycle == 1 && Ps2Bios.vsyncCountdown == countdown - 1);
    EXPECT_TRUE(doublewordAt(specialAreaFirst + D2_CHCR) == 1 && nb_dma_transfert == 1);
    const test::GsImage inSteps;
    GSreset();
    GSinit();
    stream.send();
    EXPECT_TRUE(inSteps == test::GsImage());
}

TEST_F(DmaTest, Channel5OnlyShowsItsRegistersAndAcknowledges) {
    EXPECT_EQ(write(D5_CHCR, 0x184), "");
    EXPECT_EQ(doublewordAt(specialAreaFirst + D5_CHCR), 0x84U);
    Ps2Bios.dmaChannel[sif0Channel] = {0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
    const std::string shown = write(D5_CHCR, 0x100000184);
    std::string digits;  // behind the colons
    for (std::size_t at = 0; (at = shown.find(": ", at)) != std::string::npos; ++at) {
        digits += shown.substr(at + 2, shown.find('\n', at) - at - 1);
    }
    EXPECT_EQ(digits, "100000184\n11\n22\n33\n44\n55\n66\n");
    EXPECT_EQ(Ps2Bios.dmaChannel[sif0Channel].chcr, 0x84U);
    EXPECT_EQ(nb_dma_transfert, 0U);
    EXPECT_EQ(test::outputOf([] { DmaPrintChannelInfo(dmaChannelCount); }), "");
}

}  // namespace
}  // namespace tarn
