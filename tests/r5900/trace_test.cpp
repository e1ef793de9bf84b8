// The trace line of every instruction, and that what has none stops; what steps change; the displays.
#include "r5900/instruction.h"
#include "r5900/operation.h"
#include "r5900/register_lines.h"
#include "r5900/step_text.h"
#include "r5900/trace.h"

#include <algorithm>
#include <random>
#include <set>
#include <span>

namespace tarn::test {
namespace {

// rs or base is t0, rt t1, rd t2, sa 31; ft is fp3, fs fp2, fd fp1.
constexpr u32 major(u32 code, u32 low = 0xFFF0) { return immediate(code, t0, t1, low); }
constexpr u32 function(u32 code) { return special(code, t0, t1, t2, 31); }
constexpr u32 fpu(u32 code) { return single(code, 3, 2, 1); }

// clang-format off
const std::pair<u32, const char*> lines[] = {
    {0, "nop"}, {jump(2, 0x80), "j      200"}, {jump(3, 0x3FFFFFF), "jal  ffffffc"},
    {major(4), "beq t0,t1,fffc4"}, {major(5), "bne t0,t1,fffc4"}, {major(6), "blez t0,fffc4"},
    {major(7), "bgtz t0,fffc4"}, {major(8), "addi t1,t0,fff0"}, {major(9, 1), "addiu t1,t0,   1"},
    {major(10), "slti t1,t0,fff0"}, {major(11), "sltiu t1,t0,    fff0"}, {major(12), "andi t1,t0,fff0"},
    {major(13), "ori\tt1,t0,fff0"}, {major(14), "xori t1,t0,fff0"}, {major(15, 1), "lui t1,   1"},
    {major(20), "beql t0,t1,fffc4"}, {major(21), "bnel t0,t1,fffc4"}, {major(22), "blezl t0,fffc4"},
    {major(25), "daddiu t1,t0,fff0"}, {major(26), "ldl t1,fff0(t0)"}, {major(27), "ldr t1,fff0(t0)"},
    {major(28, t2 << 11 | 24), "mult1 t2,t0,t1"}, {major(30), "lq t1,fff0(t0)"},
    {major(31), "sq t1,fff0(t0)"}, {major(32, 1), "lb t1,   1(t0)"}, {major(33), "lh t1,fff0(t0)"},
    {major(34), "lwl t1,fff0(t0)"}, {major(35), "lw t1,fff0(t0)"}, {major(36), "lbu t1,fff0(t0)"},
    {major(37), "lhu t1,fff0(t0)"}, {major(38), "lwr t1,fff0(t0)"}, {major(39), "lwu t1,fff0(t0)"},
    {major(40), "sb t1,fff0(t0)"}, {major(41), "sh t1,fff0(t0)"}, {major(42), "swl t1,fff0(t0)"},
    {major(43), "sw t1,fff0(t0)"}, {major(44), "sdl t1,fff0(t0)"}, {major(45), "sdr t1,fff0(t0)"},
    {major(46), "swr t1,fff0(t0)"}, {major(47), "CACHE"}, {major(49), "fp9 = 87654321 "},
    {major(55), "ld t1,fff0(t0)"}, {major(57), "sdwc1 fp9,fff0(t0)"}, {major(63), "sd t1,fff0(t0)"},
    {function(0), "sll t2,t1,31"}, {function(2), "srl t2,t1,31"}, {function(3), "sra t2,t1,31"},
    {function(4), "sllv t2,t1,t0"}, {function(6), "srlv t2,t1,t0"}, {function(7), "srav t2,t1,t0"},
    {function(8), "jr t0 with t0=    1234"}, {function(9), "jalr t2,t0 with t0=    1234"},
    {function(10), "movz t2,t0,t1"}, {function(11), "movn t2,t0,t1 "},
    {special(9, t0, 0, t0), "jalr t0,t0 with t0=  100008"}, {function(15), "SYNC"}, {function(16), "mhi t2"},
    {function(18), "mflo t2"}, {function(24), "mult t2,t0,t1"}, {function(26), "div t0,t1"},
    {function(27), "divu t0,t1"}, {function(29), "dmultu\tt2,t0,t1"}, {function(32), "add\tt2,t1,t0"},
    {function(33), "addu t2,t1,t0"}, {function(34), "sub\tt2,t0,t1"}, {function(35), "subu t2,t0,t1"},
    {function(36), "and\tt2,t0,t1"}, {function(37), "or t2,t0,t1"}, {function(38), "xor t2,t0,t1"},
    {function(42), "slt t2,t0,t1"}, {function(43), "sltu t2,t0,t1"}, {function(45), "daddu t2,t0,t1"},
    {function(47), "dsubu t2,t0,t1"}, {function(56), "dsll t2,t1,  1f"}, {function(58), "dsrl t2,t1,  1f"},
    {function(60), "dsll32 t2,t1,  1f"}, {function(62), "dsrl32 t2,t1,  1f"},
    {function(63), "dsra32 t2,t1,  1f"}, {regimm(0, t0, 2), "bltz t0,10000c"},
    {regimm(1, t0, 2), "bgez t0,10000c"}, {regimm(2, t0, 2), "bltzl t0,10000c"},
    {regimm(3, t0, 2), "bgezl t0,10000c"}, {immediate(16, 0, t1, 28 << 11 | 7), "mfc0 t1,TagLo/DataLo,7"},
    {coprocessor1(0, t1, 2 << 11), "mfc1 t1,fp2"}, {coprocessor1(4, t1, 2 << 11), "mtc1 t1,fp2"},
    {fpu(0), "add_s fp1,fp2,fp3"}, {coprocessor1(8, 0, 0xFFFE), "bc1f 0,ffffc"},
    {fpu(1), "sub_s fp1,fp2,fp3\n"}, {coprocessor1(8, 1, 0xFFFE), "bc1t 0,ffffc"},
    {fpu(2), "mul_s fp1,fp2,fp3"}, {coprocessor1(8, 31, 0xFFFE), "bc1tl 7,ffffc"},
    {fpu(3), "div_s fp1,fp2,fp3"}, {fpu(6), "mov_s fp1,fp2"}, {fpu(7), "neg_s fp1,fp2"},
    {fpu(36), "cvt_w_s\tfp1, fp2"}, {fpu(50), "c_eq_s 0,fp2,fp3"},
    {single(52, 3, 2, 28), "c_olt_s 7,fp2,fp3"},
    {coprocessor1(20, 3, 2 << 11 | 1 << 6 | 32), "cvt_s\tfp1,fp2"},
};
// clang-format on

TEST_F(MachineTest, EveryInstructionHasItsLine) {
    Settings.debug_op = 1;
    for (const auto& [word, line] : lines) {
        makePanes();
        MipsCpu = {};
        MipsCpu.GPR[t0].low = 0x1234;
        MipsCpu.FPR128[t1].low = 0x87654321;
        setProgram({word});
        outputOf(MipsUpdateCpu);
        EXPECT_EQ(paneLines(opcodesPane)[0], std::string("00100000: ") + line);
    }
}

/// A branch that is taken shows its own line at once, then its delay slot shows, and then that line once
/// more.
TEST_F(MachineTest, DelaySlotsShowTwice) {
    Settings.debug_op = 1;
    setProgram({immediate(20, r0, r0, 3), immediate(9, 0, v0, 5)});
    MipsUpdateCpu();
    const std::string slot = "00100004: addiu v0,r0,   5";
    EXPECT_EQ(paneLines(opcodesPane), (Lines{"00100000: beql r0,r0,100010", slot, slot}));
    const Lines registers = paneLines(cpuRegistersPane);
    EXPECT_TRUE(registers.size() == 68 && registers[2] == "v0 : 0000000000000005");
}

/// EI, DI, what stops and SYSCALL leave the line before them, which CACHE and SYNC write even untraced.
TEST_F(MachineTest, InstructionsWithoutLineRepeatTheOneBefore) {
    for (const u32 word : {immediate(16, 16, 0, 56), immediate(16, 16, 0, 57), special(39, 0, 0, 0), 12U}) {
        makePanes();
        Settings.debug_op = 0;
        setProgram({special(15, 0, 0, 0), word});
        MipsUpdateCpu();
        Settings.debug_op = 1;
        outputOf(MipsUpdateCpu);
        EXPECT_EQ(paneLines(opcodesPane), Lines{"00100000: SYNC"});
        EXPECT_EQ(paneLines(cpuRegistersPane).size(), 34U);
    }
}

// The trace against one that printf writes, for random words on both processors.

template <typename... Values>
std::string printed(const std::string& format, Values... values) {
    char text[100];
    std::snprintf(text, sizeof text, format.c_str(), values...);
    return text;
}

std::string printedLine(u32 word) {
    std::string text = printed("%8.8llx: ", MipsCpu.PC), format = r5900::traceLineOf(word).format;
    for (const r5900::Operand operand : r5900::traceLineOf(word).operands) {
        const std::size_t begin = std::min(format.find('%'), format.size());
        const std::size_t end = std::min(format.find_first_of("sdx", begin), format.size() - 1) + 1;
        const std::string conversion = format.substr(begin, end - begin);
        text += format.substr(0, begin);
        text += conversion.ends_with('s')     ? printed(conversion, r5900::nameOf(operand, word))
                : conversion.ends_with("llx") ? printed(conversion, r5900::numberOf(operand, word))
                                              : printed(conversion, int(r5900::numberOf(operand, word)));
        format.erase(0, end);
    }
    return text + format;
}

std::string printedRegisters() {
    std::string text;
    for (std::size_t i = 0; i < 34; ++i) {
        text += printed("%s : %16.16llx\n", debug_r5900_reg[i], r5900::integerRegister(i));
    }
    return text;
}

/// How the registers that all programs use differ from those before.
std::string printedChanges(const MipsCpuRecord& before) {
    std::string text;
    const auto add = [&text](const std::string& name, const GuestValue& old, const GuestValue& now) {
        if (old != now) {
            text += " " + name +
                    (now.high != 0 ? printed("=%llx%16.16llx", now.high, now.low) : "=" + hex(now.low));
        }
    };
    for (u32 i = 0; i < 32; ++i) {
        add(debug_r5900_reg[i], before.GPR[i], MipsCpu.GPR[i]);
    }
    add("hi", before.HI, MipsCpu.HI);
    add("lo", before.LO, MipsCpu.LO);
    add("sa", {before.SA, 0}, {MipsCpu.SA, 0});
    return text;
}

TEST_F(MachineTest, TracesAreWhatPrintfWrites) {
    std::mt19937_64 random(1);
    const auto anyWord = [&random] {
        const u64 majors[] = {0, 1, 16, 17, 28, random() % 64};
        const u64 rest = random() & (random() % 2 != 0 ? 0x03FFFFFF : 0x021F3FFF);
        return static_cast<u32>(majors[random() % 6] << 26 | rest);
    };
    std::set<std::string> seen;
    r5900::RegisterLines registers;
    Settings.debug_op = 1;
    for (u32 number = 0; number < 20000; ++number) {
        const MutedDiagnostics muted;
        r5900::chooseProcessor(number % 2 != 0);
        MipsCpu = {};
        for (GuestValue& reg : std::span(MipsCpu.GPR).subspan(1)) {
            reg = {random() % 2 != 0 ? random() : programStart, random() % 4 != 0 ? 0 : random()};
        }
        const u32 word = anyWord();
        setProgram({word, anyWord()});
        SCOPED_TRACE(printed("case %u: %8.8x ", number, word) + mnemonicOf(word));
        const bool hasLine = r5900::traceLineOf(word).format != nullptr;
        std::string line = hasLine ? printedLine(word) : "";
        r5900::traceLine(word);
        ASSERT_TRUE(!hasLine || line == debugTempText.data()) << line << " " << debugTempText.data();

        const MipsCpuRecord before = MipsCpu;
        r5900::StepText step;
        diagnosticSinks.trace = &step;
        MipsUpdateCpu();
        const std::string text(step.finish());
        line.erase(line.find_last_not_of(" \n") + 1);
        ASSERT_TRUE(text.starts_with(line) || mnemonicOf(word) == std::string("JALR ")) << text << line;
        ASSERT_NE(text.find(printedChanges(before)), std::string::npos) << text << printedChanges(before);
        ASSERT_EQ(registers.now(), printedRegisters());
        seen.insert(mnemonicOf(word));
    }
    r5900::chooseProcessor(false);
    EXPECT_GT(seen.size(), 200U);
}

TEST_F(MachineTest, StepsTellWhatChanged) {
    const std::pair<std::vector<u32>, const char*> steps[] = {
        {{immediate(9, 0, v0, 0xFFFF)}, "00100000: addiu v0,r0,ffff v0=ffffffffffffffff"},
        {{special(11, t0, 0, t1)}, "00100000: movn t1,t0,r0"},
        {{immediate(5, t0, r0, 7), immediate(43, a0, t0, 8)},
         "00100000: bne t0,r0,100020 | 00100004: sw t0,   8(a0) [00108008]=34"},
        {{immediate(40, a0, t0, 1)}, "00100000: sb t0,   1(a0) [00108001]=34"},
        {{immediate(31, a0, a0, 0)}, "00100000: sq a0,   0(a0) [00108000]=90000000000108000"},
        {{immediate(63, t2, a0, 0)}, "00100000: sd a0,   0(t2) [12000080]=108000"},
        {{immediate(43, t1, a0, 0)}, "00100000: sw a0,   0(t1) (paused)"},
        {{coprocessor1(4, t0, 2 << 11)}, "00100000: mtc1 t0,fp2 fp2=7.3e-44"},
        {{immediate(16, 16, 0, 56)}, "00100000: EI Status=10000"},
        {{jump(2, 0x80), special(39, 0, 0, 0)}, "00100000: j      200 | 00100004: NOR (paused)"},
    };
    for (const auto& [words, text] : steps) {
        const MutedDiagnostics muted;
        Settings.debug_op = 1;
        MipsCpu = {};
        MipsCpu.GPR[t0].low = 0x34;
        MipsCpu.GPR[t2].low = gs_privileged::DISPLAY1;
        MipsCpu.GPR[a0] = {0x108000, 9};
        setProgram(words);
        r5900::StepText step;
        diagnosticSinks.trace = &step;
        MipsUpdateCpu();
        EXPECT_EQ(step.finish(), text);
        EXPECT_EQ(step.finish(), "");
    }
}

TEST_F(MachineTest, WhatHasNoLineStopsAndStopsAgain) {
    std::set<std::string> running{"SLL", "EI", "DI", "SYSCALL"};
    for (const auto& [word, line] : lines) {
        running.insert(mnemonicOf(word));
    }
    for (u32 i = 0; i < 64; ++i) {
        for (const u32 word : {i << 26, i, regimm(i, 0, 0), immediate(16, i, 0, 0), immediate(16, 31, 0, i),
                               immediate(28, 0, 0, i), coprocessor1(i, 0, 0), coprocessor1(8, i, 0),
                               coprocessor1(16, 0, i), coprocessor1(17, 0, i), coprocessor1(20, 0, i)}) {
            if (running.count(mnemonicOf(word)) != 0) {
                continue;
            }
            MipsCpu = {};
            for (const bool inSlot : {false, false, true}) {
                setProgram({inSlot ? jump(2, 0x100) : word, word});
                MipsCpu.pause = 0;
                MipsUpdateCpu();
                EXPECT_EQ(MipsCpu.pause, 1) << mnemonicOf(word);
                EXPECT_EQ(MipsCpu.PC, inSlot ? 0x400 : programStart) << mnemonicOf(word);
            }
            EXPECT_EQ(MipsCpu.cycle, 4U);
            EXPECT_EQ(MipsCpu.GPR, MipsCpuRecord{}.GPR);
        }
    }
}

TEST_F(MachineTest, FetchesOutsideMainMemoryPause) {
    for (const u64 pc : {0x01FFFFFCULL, 0x01FFFFFDULL, 0x80100000ULL, ~0ULL}) {
        MipsCpu = {};
        MipsCpu.PC = pc;
        MipsUpdateCpu();
        const bool there = pc == 0x01FFFFFC;  // memory there is zero: a no-op
        EXPECT_TRUE(MipsCpu.PC == (there ? pc + 4 : pc) && MipsCpu.pause != there && MipsCpu.cycle == 1)
            << pc;
    }
    resetMachine();
    MipsUpdateCpu();
    EXPECT_EQ(MipsCpu.pause, 1);
}

TEST_F(MachineTest, RegisterDisplays) {
    for (u8 i = 0; i < 32; ++i) {
        MipsCpu.GPR[i] = {i, 9};
        MipsCpu.FPR32[i] = i == 30 ? 1.0F : -0.5F;
    }
    MipsCpu.HI = {0xFEDCBA9876543210, 9};
    const std::string integers = outputOf(MipsCpuPrintReg);
    EXPECT_EQ(integers.substr(0, 79),
              "r0 : 0000000000000000  | at : 0000000000000001 | v0 :0000000000000002  | \nv1 : ");
    EXPECT_TRUE(integers.ends_with(" | hi :fedcba9876543210  | \nlo : 0000000000000000  |      \n"));
    EXPECT_EQ(std::ranges::count(integers, '\n'), 12);
    const std::string floats = outputOf(MipsCpuFPR1PrintReg);
    EXPECT_TRUE(floats.starts_with(" fp0 :      -0.5000  |  fp1 :      -0.5000 |  fp2 :     -0.5000  | \n"));
    EXPECT_TRUE(floats.ends_with("\nfp30 :       1.0000  | fp31 :      -0.5000 | \n"));
    MipsCpuPrintRegtoOutput();
    EXPECT_EQ(paneLines(cpuRegistersPane).back(), "lo : 0000000000000000");
}

TEST_F(MachineTest, OpcodeDisplay) {
    const std::pair<u32, const char*> displays[] = {
        {function(9), "==> 10957c9\nr5900:dbg_opcode_special: JALR  \n"},
        {regimm(2, 0, 0), "==> 4020000\nr5900:dbg_opcode_regimm: BLTZL \n"},
        {immediate(16, 16, 0, 57), "==>42000039\nr5900:dbg_opcode_cop0: C0 \nr5900:dbg_opcode_cop0c0: DI \n"},
        {coprocessor1(8, 3, 0), "==>45030000\nr5900:debug_cop1_BC1_opc: BC1TL \n"},
        {fpu(4), "==>46031044\nr5900:debug_cop1_S_opc: SQRT_S \n"},
        {coprocessor1(20, 0, 32), "==>46800020\nr5900:debug_cop1_W_opc: CVT_S \n"},
        {coprocessor1(17, 0, 0), "==>46200000\nr5900:dbg_opcode_cop1: COP1_D \n"},
        {immediate(28, 0, 0, 24),
         "==>70000018\nr5900:dbg_opcode_special2: MULT1 \nr5900:dbg_opcode: SPECIAL2 \n"},
    };
    for (const auto& [word, text] : displays) {
        MipsCpu.opcode = word;
        EXPECT_EQ(outputOf(PrintDebugOpcode), text);
    }
    r5900::chooseProcessor(true);
    MipsCpu.opcode = immediate(28, 0, 0, 8);
    EXPECT_EQ(outputOf(PrintDebugOpcode),
              "==>70000008\nr5900:dbg_opcode_special2: PADDW \nr5900:dbg_opcode: MMI \n");
    r5900::chooseProcessor(false);
}

}  // namespace
}  // namespace tarn::test
