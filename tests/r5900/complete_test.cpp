// What the complete processor does that the described one does not, by rows worked out by hand: r0,
// alignment, the counter, three-operand products, the second pipeline, SA, and where it stops.
#include "r5900/complete_machine.h"

namespace tarn::test {
namespace {

enum : u32 { one = 1, minusOne, minWord, address, out, big };
constexpr u64 registerValues[] = {0, 1, ~u64{0}, 0xFFFFFFFF80000000, 0x00200000, 0x5555, 0x7FFFFFFFFFFFFFFF};

class CompleteProcessor : public CompleteTest {
  protected:
    static void start(const std::vector<u32>& words) {
        MipsCpu = {};
        for (u32 i = 0; i < std::size(registerValues); ++i) {
            MipsCpu.GPR[i] = {registerValues[i], 0x100 + i};
        }
        MipsCpu.GPR[0] = {};
        MipsCpu.LO = {10, 20};
        MipsCpu.HI = {0, 30};
        MipsCpu.SA = 5;
        setProgram(words);
    }
};

constexpr u32 mmi(u32 code, u32 rs, u32 rt, u32 rd, u32 sa = 0) {
    return immediate(28, rs, rt, rd << 11 | sa << 6 | code);
}

TEST_F(CompleteProcessor, Results) {
    u64 *const rd = &MipsCpu.GPR[out].low, *const rdHigh = &MipsCpu.GPR[out].high;
    const struct {
        u32 word;
        u64* slot;
        u64 value;
    } cases[] = {
        {immediate(9, one, 0, 5), &MipsCpu.GPR[0].low, 0},
        {special(24, one, one, 0), &MipsCpu.GPR[0].low, 0},
        {special(3, 0, big, out, 4), rd, ~u64{0}},
        {special(22, address, minusOne, out), rd, ~u64{0}},
        {special(24, minusOne, minWord, out), rd, 0xFFFFFFFF80000000},
        {special(25, minusOne, minusOne, out), rd, 1},
        {special(25, minusOne, minusOne, out), &MipsCpu.HI.low, 0xFFFFFFFFFFFFFFFE},
        {mmi(0, minusOne, one, out), rd, 9},
        {mmi(1, minusOne, one, out), rd, 9},
        {mmi(1, minusOne, one, out), &MipsCpu.HI.low, 1},
        {mmi(32, minusOne, one, out), rd, 19},
        {mmi(32, minusOne, one, out), &MipsCpu.HI.high, 30},
        {mmi(33, minusOne, one, out), rd, 19},
        {mmi(33, minusOne, one, out), &MipsCpu.HI.high, 31},
        {mmi(25, minusOne, minusOne, out), &MipsCpu.HI.high, 0xFFFFFFFFFFFFFFFE},
        {mmi(27, minWord, minusOne, 0), &MipsCpu.HI.high, 0xFFFFFFFF80000000},
        {mmi(24, minusOne, one, out), &MipsCpu.LO.high, ~u64{0}},
        {mmi(26, minWord, minusOne, 0), &MipsCpu.LO.high, 0xFFFFFFFF80000000},
        {mmi(18, 0, 0, out), rd, 20},
        {mmi(16, 0, 0, out), rd, 30},
        {mmi(17, big, 0, 0), &MipsCpu.HI.high, registerValues[big]},
        {mmi(19, big, 0, 0), &MipsCpu.LO.high, registerValues[big]},
        {mmi(9, minusOne, one, out, 14), rd, 1},  // PCPYLD
        {mmi(9, minusOne, one, out, 14), rdHigh, ~u64{0}},
        {mmi(4, one, 0, out), rd, u64{31} << 32 | 30},  // PLZCW
        {immediate(1, one, 24, 6), &MipsCpu.SA, 7},     // MTSAB
        {immediate(1, one, 25, 12), &MipsCpu.SA, 10},   // MTSAH
        {special(40, 0, 0, out), rd, 5},                // MFSA
        {special(41, one, 0, 0), &MipsCpu.SA, 1},       // MTSA
        {immediate(51, one, 0, 1), rd, 0x5555},         // PREF
    };
    for (const auto& [word, slot, value] : cases) {
        SCOPED_TRACE(mnemonicOf(word) + (" " + hex(word)));
        start({word});
        MipsUpdateCpu();
        EXPECT_EQ(hex(*slot), hex(value));
        EXPECT_TRUE(MipsCpu.pause == 0 && MipsCpu.PC == programStart + 4);
        EXPECT_EQ(MipsCpu.GPR[0], GuestValue{});
    }
}

TEST_F(CompleteProcessor, StopsOnTheInstructionAndSaysWhy) {
    const std::pair<u32, const char*> cases[] = {
        {special(32, minWord, minWord, out), "integer overflow"},
        {immediate(24, big, out, 1), "integer overflow"},
        {special(52, one, one, 0), "trap taken"},
        {special(13, 0, 0, 0), "breakpoint instruction"},
        {immediate(35, address, out, 2), "unaligned address"},
        {immediate(63, address, out, 4), "unaligned address"},
        {immediate(16, 16, 0, 24), "instruction not supported"},
        {immediate(18, 0, 0, 0), "instruction not supported"},
        {immediate(28, 0, 0, 63 - 4), "no such instruction"},
        {special(28, one, one, 0), "no such instruction"},
    };
    for (const auto& [word, reason] : cases) {
        SCOPED_TRACE(mnemonicOf(word) + (" " + hex(word)));
        makePanes();
        start({word});
        MipsUpdateCpu();
        EXPECT_TRUE(MipsCpu.pause == 1 && MipsCpu.PC == programStart && MipsCpu.GPR[out].low == 0x5555);
        const Lines lines = paneLines(emuOutputPane);
        ASSERT_EQ(lines.size(), 1U);
        start({jump(2, 0x100), word});
        MipsUpdateCpu();
        EXPECT_TRUE(MipsCpu.pause == 1 && MipsCpu.PC == programStart + 4) << "in a delay slot";
        EXPECT_TRUE(lines[0].starts_with("Stop at 00100000, ") && lines[0].ends_with(reason)) << lines[0];
    }
    start({0, 0});
    MipsCpu.PC += 2;
    MipsUpdateCpu();
    EXPECT_TRUE(MipsCpu.pause == 1 && MipsCpu.PC == programStart + 2) << "words of 0 at unaligned addresses";
}

TEST_F(CompleteProcessor, TrapsAreTakenUnderTheirConditions) {
    // By the lowest bits of the codes: TGE, TGEU, TLT, TLTU, TEQ, TNE. `one` and `minusOne` stand in for
    // operands.
    constexpr u32 codes[] = {0, 1, 2, 3, 4, 6};
    constexpr bool taken[][3] = {{true, false, true},  {false, true, true},  {false, true, false},
                                 {true, false, false}, {false, false, true}, {true, true, false}};
    for (u32 i = 0; i < std::size(codes); ++i) {
        for (const auto& [left, right, column] :
             {std::tuple{one, minusOne, 0}, {minusOne, one, 1}, {one, one, 2}}) {
            const u32 imm = static_cast<u32>(registerValues[right]);
            for (const u32 word : {special(48 + codes[i], left, right, 0), regimm(8 + codes[i], left, imm)}) {
                start({word});
                MipsUpdateCpu();
                EXPECT_EQ(MipsCpu.pause, taken[i][column]) << mnemonicOf(word) << " " << column;
            }
        }
    }
}

TEST_F(CompleteProcessor, CountsDriverSteps) {
    constexpr u32 readCount = immediate(16, 0, out, 9 << 11);
    start({immediate(4, 0, 0, 1), 0, readCount, immediate(16, 4, one, 9 << 11), readCount});
    MipsUpdateCpu();  // the branch and its delay slot
    MipsUpdateCpu();
    EXPECT_EQ(MipsCpu.GPR[out].low, 2U);
    MipsUpdateCpu();
    MipsUpdateCpu();
    EXPECT_EQ(MipsCpu.GPR[out].low, 2U);
}

}  // namespace
}  // namespace tarn::test
