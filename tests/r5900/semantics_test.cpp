// What the instructions do that is this machine's own: dirty upper words, overflows, divisions by zero, the
// second pipeline, register halves, NaNs, conversions and refused loads; jumps, and the delay slots that they
// execute. Plain results are held against qemu, and many of these by the guest program arithmetic.
#include "r5900/delay_slot.h"
#include "r5900/instruction.h"

#include <tuple>
#include <utility>

namespace tarn::test {
namespace {

// clang-format off
// Registers by what they hold; `out` is the usual destination.
enum : u32 { one = 1, minusOne, maxWord, minWord, lowOnes, minDouble, dirty, carry, two, out, minus7, data };
constexpr u64 registerValues[] = {0, 1, ~u64{0}, 0x7FFFFFFF, 0xFFFFFFFF80000000, 0xFFFFFFFF, u64{1} << 63,
                                  0x1F00000010, u64{1} << 32, 2, 0x0123456780809180, ~u64{6}, 0x00200010};

// Floating-point registers by what they hold, as bit images.
enum : u32 { f1 = 1, f2, fInf, fMinusInf, fQuiet, fSignalling, fTiny, fMinusHalf, fBelow2To31, f2To31,
             f2To33, f2To63, fOut = 31 };
constexpr u64 images[] = {0,          0x3F800000, 0x40000000,         0x7F800000, 0xFF800000,
                          0x7FC12345, 0xFF812345, 0x8000008000000001, 0xBF000000, 0x4EFFFFFF,
                          0x4F000000, 0x50000000, 0x5F000000};
constexpr u64 invalid = 0xFFC00000, fMinus2To31 = 0xCF000000;

GuestValue memory;  // the quadword before the address in `data`, here while no instruction runs
constexpr GuestValue memoryBefore{0x8877665544338281, 0x100F0E0D0C0B0A99};
constexpr u64 quadwordAddress = 0x00200000;
constexpr const char* refused = "Mem:Read:NEED SPECIAL HANDLE ADD :  0\n";

u64* gpr(u32 number) { return &MipsCpu.GPR[number].low; }
u64* image(u32 number) { return &MipsCpu.FPR128[number].low; }

struct Case {
    u32 word;
    std::vector<std::pair<u64*, u64>> changes;  // everything else stays as it is
    const char* printed = "";
};

u64 *const hi = &MipsCpu.HI.low, *const lo = &MipsCpu.LO.low;
u64 *const hi1 = &MipsCpu.HI.high, *const lo1 = &MipsCpu.LO.high;
u64 *const condition = &MipsCpu.FCR[31], *const status = &MipsCpu.CP0[12][0];
u64 *const rd = gpr(out), *const rdHigh = &MipsCpu.GPR[out].high, *const fd = image(fOut);
constexpr u64 conditionHolds = 1 << 23;

const Case cases[] = {
    // Immediates, sums and differences
    {immediate(9, carry, out, 0xFFFF), {{rd, ~u64{0}}}},
    {immediate(9, maxWord, r0, 1), {{gpr(r0), 0xFFFFFFFF80000000}}},
    {special(32, minWord, lowOnes, out), {}, "add Integer Overflow\n"},
    {special(32, lowOnes, carry, r0), {{gpr(r0), ~u64{0}}}},
    {special(33, lowOnes, maxWord, out), {{rd, 0x7FFFFFFE}}},
    {special(34, r0, minWord, out), {}, "sub Integer Overflow\n"},
    {special(34, dirty, lowOnes, out), {{rd, 17}}},
    {special(47, r0, minDouble, r0), {{gpr(r0), u64{1} << 63}}, "dsubu Integer Overflow\n"},
    {special(3, 0, lowOnes, out, 4), {{rd, ~u64{0}}}}, {special(7, one, lowOnes, out), {{rd, ~u64{0}}}},
    {special(7, minWord, dirty, out), {{rd, 16}}},
    // Products and quotients
    {special(24, lowOnes, carry, out), {{lo, 0}, {hi, 0}, {rd, 0}}},
    {special(24, lowOnes, two, r0), {{lo, ~u64{1}}, {hi, ~u64{0}}, {gpr(r0), ~u64{1}}}},
    {immediate(28, minusOne, two, r0 << 11 | 24), {{lo1, 0x1FFFFFFFE}, {hi1, 0}, {gpr(r0), 0x1FFFFFFFE}}},
    {special(29, minusOne, two, out), {{lo, ~u64{1}}, {hi, 1}, {rd, ~u64{1}}}},
    {special(26, minus7, carry, out), {{lo, 1}, {hi, ~u64{6}}}},
    {special(16, 0, 0, r0), {{gpr(r0), 0x1111}}}, {special(18, 0, 0, out), {{rd, 0x2222}}},
    // Loads and stores
    {immediate(30, data, out, 0xFFF0), {{rd, memoryBefore.low}, {rdHigh, memoryBefore.high}}},
    {immediate(26, data, out, 0xFFF7), {{rdHigh, 0x0F0E0D0C0B0A9988}}},
    {immediate(27, data, out, 0xFFF1), {{rd, 0x9988776655443382}}},
    {immediate(55, data, data, 0xFFF0), {{gpr(data), memoryBefore.low}}},
    {immediate(31, data, out, 0xFFF0), {{&memory.low, 0x0123456780809180}, {&memory.high, 0x4444}}},
    {immediate(44, data, out, 0xFFF0), {{&memory.low, 0x4444}}},
    {immediate(57, data, fTiny, 0xFFF0), {{&memory.low, 0x8877665500000001}}},
    // Refused loads complete with what the destination holds
    {immediate(32, r0, out, 0), {{rd, 0xFFFFFFFFFFFFFF80}}, refused},
    {immediate(35, r0, out, 0), {{rd, 0xFFFFFFFF80809180}}, refused},
    {immediate(34, r0, out, 0), {{rd, 0x9180}}, refused},
    {immediate(38, r0, out, 0), {{rd, 0xFFFFFFFF80800000}}, refused},
    {immediate(39, r0, out, 0), {}, refused}, {immediate(49, r0, f1, 0), {{image(f1), 0}}, refused},
    // NaNs: the first operand's, made quiet
    {single(0, fSignalling, fQuiet, fOut), {{fd, 0x7FC12345}}},
    {single(1, fQuiet, fSignalling, fOut), {{fd, 0xFFC12345}}},
    {single(0, fMinusInf, fInf, fOut), {{fd, invalid}}}, {single(3, 0, 0, fOut), {{fd, invalid}}},
    {single(0, fTiny, fTiny, fOut), {{fd, 2}}}, {single(7, 0, fSignalling, fOut), {{fd, 0x7F812345}}},
    // The image of a result has the next register's value behind it; a move copies the image.
    {single(0, f2, f1, f1), {{image(f1), 0x4000000040400000}}},
    {single(6, 0, fTiny, fOut), {{fd, 0x8000008000000001}}},
    // CVT_W_S, MFC1, MTC1, CVT_S
    {single(36, 0, fMinusHalf, fOut), {{fd, 0}}}, {single(36, 0, fBelow2To31, fOut), {{fd, 0x4EFFFFFF}}},
    {single(36, 0, f2To31, fOut), {{fd, fMinus2To31}}},
    {coprocessor1(0, out, f2To31 << 11), {{rd, 0x80000000}}},
    {coprocessor1(0, out, f2To33 << 11), {{rd, 0}}}, {coprocessor1(0, out, f2To63 << 11), {{rd, 0}}},
    {coprocessor1(0, r0, fQuiet << 11), {{gpr(r0), 0}}},
    {coprocessor1(4, dirty, fOut << 11), {{fd, 0x1F00000010}}},
    {coprocessor1(20, 0, fTiny << 11 | fOut << 6 | 32), {{fd, 0x5F000001}}},
    // Comparisons, with the other bits of FCR31 set
    {single(50, 0, 0, 0), {{condition, ~u64{0}}}},
    {single(50, fQuiet, fQuiet, 0), {{condition, ~conditionHolds}}},
    {single(50, f1, f1, 4), {}, "C_EQ_S : cc not implemented\n"},
    {single(52, f1, f2, 28), {}, "C_OLT_S : cc not implemented\n"},
    // Coprocessor 0
    {immediate(16, 0, out, 12 << 11), {{rd, 0xFFFFFFFF90900001}}},
    {immediate(16, 0, r0, 15 << 11 | 3), {{gpr(r0), 0x2E20}}},
    {immediate(16, 0, out, 12 << 11 | 4), {{rd, 0}}},
    {immediate(16, 16, 0, 56), {{status, 0xFF90910001}}}, {immediate(16, 31, 0, 57), {{status, 0x90900001}}},
};
// clang-format on

/// All that these instructions can write but the values of the floating-point registers.
auto written(const MipsCpuRecord& cpu) {
    return std::tie(cpu.GPR, cpu.HI, cpu.LO, cpu.CP0, cpu.FPR128, cpu.FCR);
}

TEST_F(MachineTest, InstructionsWriteWhatTheyShouldAndNothingElse) {
    for (const Case& c : cases) {
        SCOPED_TRACE(mnemonicOf(c.word) + (" " + hex(c.word)));
        MipsCpu = {};
        MipsCpu.GPR.fill({0, 0x4444});
        for (u32 i = 0; i < std::size(registerValues); ++i) {
            *gpr(i) = registerValues[i];
        }
        for (u32 i = 0; i < std::size(images); ++i) {
            *image(i) = images[i];
            MipsCpu.FPR32[i] = MipsCpu.FPR128Ptr(static_cast<u8>(i));
        }
        MipsCpu.HI = {0x1111, 0x3333};
        MipsCpu.LO = {0x2222, 0x3333};
        *status = 0xFF90900001;
        MipsCpu.CP0[15][3] = 0x2E20;
        *condition = c.changes.empty() || c.changes[0].second != ~u64{0} ? ~u64{0} : ~conditionHolds;
        const MipsCpuRecord before = MipsCpu;
        std::memcpy(MipsMemory + quadwordAddress, &memoryBefore, sizeof memory);
        setProgram({c.word});
        EXPECT_EQ(outputOf(MipsUpdateCpu), c.printed);
        std::memcpy(&memory, MipsMemory + quadwordAddress, sizeof memory);
        EXPECT_EQ(MipsCpu.PC, programStart + 4);
        EXPECT_EQ(MipsCpu.pause, c.printed == refused || std::string(c.printed).ends_with("implemented\n"));
        for (u8 i = 0; i < 32; ++i) {
            EXPECT_EQ(std::bit_cast<u32>(MipsCpu.FPR32[i]), static_cast<u32>(*image(i)));
        }
        for (const auto& [slot, value] : c.changes) {
            EXPECT_EQ(hex(*slot), hex(value));
        }
        const MipsCpuRecord after = std::exchange(MipsCpu, before);
        const GuestValue stored = std::exchange(memory, memoryBefore);
        for (const auto& [slot, value] : c.changes) {
            *slot = value;
        }
        EXPECT_TRUE(written(after) == written(MipsCpu) && stored == memory) << "something else was written";
    }
}

constexpr u32 countInSlot = immediate(9, v0, v0, 1);  // ADDIU: v0 counts the executions of the delay slot

TEST_F(MachineTest, BranchesReachAsFarAsTheirOffset) {
    for (const auto& [offset, target] :
         {std::pair{0x8000U, programStart + 4 - 0x20000}, {0x7FFF, 0x120000}}) {
        MipsCpu = {};
        setProgram({immediate(4, r0, r0, offset), countInSlot});
        MipsUpdateCpu();
        EXPECT_TRUE(MipsCpu.PC == target && MipsCpu.cycle == 2 && MipsCpu.GPR[v0].low == 1) << offset;
    }
}

TEST_F(MachineTest, OtherConditionCodesPauseOnTheBranch) {
    setProgram({coprocessor1(8, 31, 3)});
    EXPECT_EQ(outputOf(MipsUpdateCpu), "BC1TL : cc not implemented\n");
    EXPECT_TRUE(MipsCpu.pause == 1 && MipsCpu.PC == programStart);
}

TEST_F(MachineTest, JumpsLinkBeforeTheirDelaySlot) {
    constexpr u64 pc = 0x700100000, dirty = 0xFFFFFFFF00200002;  // the fetch uses the low word only
    const struct {
        u32 word;
        u64 target;
        u8 linked;
    } jumps[] = {{jump(2, 0x100), 0x700000400, t1},  {jump(3, 0x3FFFFFF), 0x70FFFFFFC, ra},
                 {special(8, t0, 0, 0), dirty, t1},  {special(9, t0, 0, ra), dirty, ra},
                 {special(9, t0, 0, t0), dirty, t0}, {special(9, t0, 0, r0), dirty, r0}};
    for (const auto& [word, target, linked] : jumps) {
        SCOPED_TRACE(mnemonicOf(word) + hex(linked));
        MipsCpu = {};
        MipsCpu.GPR[t0].low = dirty;
        setProgram({word, special(36, linked, linked, v0)});  // AND: what the delay slot sees
        MipsCpu.PC = pc;
        MipsUpdateCpu();
        EXPECT_TRUE(MipsCpu.PC == target && MipsCpu.GPR[v0].low == (linked == t1 ? 0 : pc + 8));
    }
    MipsUpdateCpu();  // at an address that is no multiple of four
    EXPECT_EQ(MipsCpu.PC, dirty + 4);
}

TEST_F(MachineTest, NestedDelaySlotsAreBounded) {
    constexpr u32 bound = r5900::maximumDelaySlotDepth;
    for (const u32 jumps : {2U, bound, bound + 1, 8 * bound}) {
        MipsCpu = {};
        MipsCpu.PC = programStart;
        for (u32 i = 0; i <= jumps; ++i) {
            const u32 word = i < jumps ? jump(2, 0x100 + i) : countInSlot;
            std::memcpy(MipsMemory + programStart + i * 4, &word, 4);
        }
        MipsUpdateCpu();
        EXPECT_EQ(MipsCpu.PC, 0x400U);  // the outermost target
        EXPECT_EQ(MipsCpu.cycle, std::min(jumps, bound + 1) + 1);
        EXPECT_TRUE(MipsCpu.pause == (jumps > bound) && MipsCpu.GPR[v0].low == (jumps <= bound));
    }
}

}  // namespace
}  // namespace tarn::test
