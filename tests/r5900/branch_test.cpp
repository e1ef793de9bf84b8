// Branches, jumps, and the delay slots that they execute.
#include "r5900/branch.h"
#include "r5900/instruction.h"

namespace tarn {
namespace {

using namespace test;

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
    } cases[] = {{jump(2, 0x100), 0x700000400, t1},  {jump(3, 0x3FFFFFF), 0x70FFFFFFC, ra},
                 {special(8, t0, 0, 0), dirty, t1},  {special(9, t0, 0, ra), dirty, ra},
                 {special(9, t0, 0, t0), dirty, t0}, {special(9, t0, 0, r0), dirty, r0}};
    for (const auto& [word, target, linked] : cases) {
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
}  // namespace tarn
