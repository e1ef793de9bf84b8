// Instruction words and a seeded register file through the driver step, with every area mapped and the DMA
// controller, the kernel calls and the renderer behind them. What the program leaves in memory lasts only
// until the next input.
#include "base/bits.h"
#include "machine/devices.h"
#include "r5900/delay_slot.h"
#include "r5900/interpreter.h"
#include "support.h"

#include <random>
#include <vector>

namespace tarn {
namespace {

constexpr u32 programAddress = 0x00100000;
constexpr u32 programWords = 256;
constexpr u32 packetAddress = 0x00180000;
constexpr u32 registerAt = 1;
constexpr u64 stepLimit = 96;
constexpr u64 workLimit = 0x4000;  ///< pixels after which an input has drawn enough; the step goes to its end

/// Bases from which loads and stores reach every area, its ends, its mirrors, and what is not mapped.
constexpr u32 bases[] = {
    0x00100000, 0x00100040, 0x0017FFF0, 0x01FFFFF0, 0x01FFFFFF, 0x02000000, 0x000FFFF8, 0x00000000,
    0x20100000, 0x21FFFFF8, 0x30100000, 0x80100000, 0x81FFFFF0, 0x9FC00000, 0x9FFFFFF8, 0xBFC00000,
    0x1FC00000, 0x1FFFFFFC, 0x10000000, 0x10003000, 0x1000A000, 0x1000A010, 0x1000A020, 0x1000C000,
    0x1000E010, 0x1000FFF8, 0x12000000, 0x12000070, 0x12000080, 0x12001000, 0x12001080, 0xA0100000,
};

/// Opcodes by what they reach, so that most words do something.
constexpr u32 majorOpcodes[] = {0,  0,  0,  1,  2,  3,  4,  5,  6,  7,  9,  13, 15, 16, 17, 20, 22, 26, 27,
                                28, 30, 31, 32, 34, 35, 36, 37, 38, 40, 42, 43, 44, 45, 46, 49, 55, 57, 63};

/// A word as the input has it, or one with an opcode that is implemented and a short way to jump.
u32 takeWord(fuzz::Input& input) {
    const u8 choice = input.take<u8>();
    const u32 word = input.take<u32>();
    if (choice >= 0xF0) {
        return word;
    }
    const u32 opcode = majorOpcodes[choice % std::size(majorOpcodes)];
    if (opcode == 2 || opcode == 3) {  // jumps into the program
        return opcode << 26 | (programAddress / 4 + word % 64);
    }
    const bool branch =
        (opcode < 8 && opcode > 0) || opcode == 20 || opcode == 22;  // a few instructions away
    return opcode << 26 | (branch ? (word & 0x03FF0000) | ((word & 0x1F) - 12) % 0x10000 : word & 0x03FFFFFF);
}

/// A program under construction.
struct Program {
    std::vector<u32> words;

    /// lui and ori.
    void loadRegister(u32 number, u32 value) {
        words.push_back(15U << 26 | number << 16 | value >> 16);
        words.push_back(13U << 26 | number << 21 | number << 16 | (value & 0xFFFF));
    }
    /// sw of `value` to `offset` from registerAt.
    void storeWord(u32 value, u32 offset) {
        loadRegister(REG_V0, value);
        words.push_back(43U << 26 | registerAt << 21 | REG_V0 << 16 | offset);
    }
};

/// Starts a channel of the DMA controller.
void addTransfer(Program& program, fuzz::Input& input) {
    using namespace dma_register;
    constexpr u32 places[] = {packetAddress, programAddress, 0x01FFFFF0, 0x01FFFFE8, 0x02000000, 0};
    constexpr u32 counts[] = {64, 1, 0, 512};
    constexpr u32 controls[] = {0x101, 0x105, 0x100, 1};
    program.loadRegister(registerAt, specialAreaFirst + (input.take<u8>() < 0xE0 ? D2_CHCR : D5_CHCR));
    program.storeWord(input.pick(places), D2_MADR - D2_CHCR);
    program.storeWord(input.pick(counts) & 0xFFF, D2_QWC - D2_CHCR);
    program.storeWord(input.pick(controls), 0);
}

/// Calls the kernel with two small numbers.
void addCall(Program& program, fuzz::Input& input) {
    program.loadRegister(REG_V1, input.take<u8>());
    program.loadRegister(REG_A0, input.take<u8>());
    program.loadRegister(REG_A1, input.take<u8>() & 3);
    program.words.push_back(12);
}

/// Rectangles for the GIF, hardly ever so large that one step of the machine cannot draw them all.
void placePacket(fuzz::Input& input, bool large) {
    const u8 kind = input.take<u8>();
    const u64 count = kind & 15;
    const u64 edge = large ? 0x3FF0 : kind;
    const u64 header[] = {u64{1} << 60 | 3,     0xE, 16 << 16, 0x4C, u64{1023} << 48 | 1023 << 16, 0x40, 6, 0,
                          u64{2} << 60 | count, 0x55};
    std::memcpy(MipsMemory + packetAddress, header, sizeof header);
    for (u64 i = 0; i < count; ++i) {
        const u64 corners[] = {0, i, edge | edge << 32, i};
        std::memcpy(MipsMemory + packetAddress + sizeof header + i * sizeof corners, corners, sizeof corners);
    }
}

void seedRegisters(fuzz::Input& input) {
    std::minstd_rand random(input.take<u16>());
    for (std::size_t i = 1; i < MipsCpu.GPR.size(); ++i) {
        const u64 low = random();
        const bool address = i % 2 == 0;
        MipsCpu.GPR[i] = {address ? signExtend32(bases[low % std::size(bases)]) : low * low, u64{random()}};
    }
    for (f32& value : MipsCpu.FPR32) {
        value = std::bit_cast<f32>(static_cast<u32>(random()) * 2654435761U);
    }
    MipsCpu.GPR[REG_V1].low = input.take<u8>();
}

/// A step is one instruction and as many delay slots as may be nested, or the next part of a long transfer.
void runChecked(u64 limit) {
    const fuzz::WorkTimer timer;
    for (u64 step = 0; step < limit && MipsCpu.pause == 0 && Gs.work < workLimit; ++step) {
        const u64 before = MipsCpu.cycle;
        const u64 work = Gs.work;
        const u64 longest = gifTransferGoesOn() ? 0 : r5900::maximumDelaySlotDepth + 2;
        driverStep();
        fuzz::require(MipsCpu.cycle - before <= longest, "the cycles of one step");
        fuzz::require((MipsCpu.cycle == before) == (longest == 0),
                      "an instruction runs unless a transfer does");
        fuzz::require(Gs.work - work <= gifStepWork + 2 * localMemoryWords, "the work of one step");
        fuzz::require(MipsCpu.delaySlotDepth == 0, "no delay slot stays open");
    }
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    test::resetRecords();
    fuzz::restartRenderer();
    fuzz::clearMemory();
    fuzz::Input input({data, size});
    const u8 settings = input.take<u8>();
    const bool traced = (settings & 0x70) == 0x70;
    Settings.debug_op = traced ? 1 : 0;
    Settings.debug_dma = (settings >> 1) & 1;
    Settings.debug_gs = (settings >> 2) & 1;
    Settings.debug_print_syscall = (settings >> 3) & 1;
    seedRegisters(input);
    Ps2Bios.vsyncCountdown = 14 + (settings >> 4);
    MipsCpu.PC = programAddress;
    placePacket(input, settings == 0x8F);
    Program program;
    while (!input.empty() && program.words.size() < programWords) {
        const u8 choice = input.take<u8>();
        if (choice < 0x10) {
            addTransfer(program, input);
        } else if (choice < 0x20) {
            addCall(program, input);
        } else {
            program.words.push_back(takeWord(input));
        }
    }
    // Past its end the program starts again, with what it has made of itself.
    program.words.push_back(2U << 26 | programAddress / 4);
    std::memcpy(MipsMemory + programAddress, program.words.data(), program.words.size() * 4);

    // The first half step by step, the rest as a batch; a pause is lifted once, as F2 does.
    const u64 limit = traced ? 8 : stepLimit;
    runChecked(limit / 2);
    MipsCpu.pause = 0;
    for (u64 steps = 0; steps < limit / 2 && MipsCpu.pause == 0 && Gs.work < workLimit;) {
        steps += runSteps(limit / 2 - steps);
    }
    if (traced) {
        MipsCpuPrintRegtoOutput();
        MipsCpuPrintReg();
        PrintDebugOpcode();
    }
    return 0;
}
