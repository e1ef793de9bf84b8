// Holds the interpreter against an independent processor: random programs of instructions that a MIPS64 has
// with the same meaning run here and in qemu's user mode, and must leave the same registers and memory.
#include "r5900/instruction.h"
#include "r5900/operation.h"
#include "support/run_directory.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <sys/stat.h>
#include <utility>

namespace tarn::test {
namespace {

using r5900::gpr;

// The layout of a program, at the same addresses for both processors. A block is preceded by the loading of
// all registers from its record, and followed by the storing of all into it. Every second seed is for the
// complete processor; TARN_SEEDS=N sets how many there are, of 262144 instructions each.
constexpr u32 blockCount = 2048, blockLength = 128;
constexpr u32 recordSize = 27 * 8 + 32 * 4;  // r1 to r25, HI, LO; fp0 to fp31
constexpr u32 windowSize = 1024;             // what the random loads and stores reach
constexpr u32 origin = static_cast<u32>(programStart), dataAddress = 0x00300000,
              windowAddress = dataAddress + blockCount * recordSize;
constexpr u32 dataSize = blockCount * recordSize + windowSize;
constexpr u32 record = 26, window = 27, spare = 28;  // registers that random instructions do not write

// What must hold of the operands for both processors to agree. `trial` is a condition on the result: it must
// be no NaN, which they code differently.
using Condition = bool (*)(u64 left, u64 right);
bool any(u64, u64) { return true; }
bool words(u64 left, u64 right) { return left == signExtend32(left) && right == signExtend32(right); }
bool sums(u64 left, u64 right) { return words(left, right) && words(left + right, left - right); }
bool quotient(u64 left, u64 right) { return words(left, right) && right != 0 && words(0 - left, 0); }
constexpr Condition trial = nullptr;

/// Instructions with the same random fields (`positions`), without operands.
struct Group {
    std::string fields;
    Condition condition;
    std::vector<u32> words;
    enum : u8 { Both, Described, Complete } processor = Both;
};

constexpr u32 major(u32 code) { return code << 26; }
constexpr u32 fpu(u32 code) { return single(code, 0, 0, 0); }

// clang-format off
const std::vector<Group> straight = {
    // SYNC; MFHI MFLO; SLTI to XORI, DADDIU; ADDIU; LUI
    {"", any, {15}}, {"d", any, {16, 18}},
    {"sti", any, {major(10), major(11), major(12), major(13), major(14), major(25)}},
    {"sti", words, {major(9)}}, {"ti", any, {major(15)}},
    // SLLV MOVZ MOVN AND OR XOR SLTU DADDU; SLRV SRAV ADDU SUBU SLT DSUBU
    {"std", any, {4, 10, 11, 36, 37, 38, 43, 45}}, {"std", words, {6, 7, 33, 35, 42, 47}},
    // SLL DSLL DSRL DSLL32 DSRL32 DSRA32; SRL SRA; DMULTU; MULT DIV DIVU
    {"tda", any, {0, 56, 58, 60, 62, 63}}, {"tda", words, {2, 3}}, {"st", any, {29}, Group::Described},
    {"st", quotient, {24, 26, 27}},
    // LB LBU SB; LH LHU SH; LW LWU SW; LD SD; LWC1; SWC1
    {"t1", any, {major(32), major(36), major(40)}}, {"t2", any, {major(33), major(37), major(41)}},
    {"t4", any, {major(35), major(39), major(43)}}, {"t8", any, {major(55), major(63)}},
    // On the complete processor: MTHI MTLO; DSLLV DSRLV DSRAV NOR SLT DSUBU; DADD DSUB; DADDI; ADD SUB; ADDI;
    // DSRA; MULTU;
    // LWL LWR SWL SWR LDL LDR SDL SDR
    {"s", any, {17, 19}, Group::Complete}, {"std", any, {20, 22, 23, 39, 42, 47}, Group::Complete},
    {"std", words, {44, 46}, Group::Complete}, {"sti", words, {major(24)}, Group::Complete},
    {"std", sums, {32, 34}, Group::Complete}, {"sti", sums, {major(8)}, Group::Complete},
    {"tda", any, {59}, Group::Complete}, {"st", words, {25}, Group::Complete},
    {"t1", any, {major(34), major(38), major(42), major(46)}, Group::Complete},
    {"t1", any, {major(26), major(27), major(44), major(45)}, Group::Complete},
    // On the described one:
    {"T4", trial, {major(49)}, Group::Described}, {"T4", any, {major(57)}, Group::Described},
    // MTC1; ADD_S SUB_S MUL_S DIV_S; MOV_S NEG_S; C_EQ_S C_OLT_S
    {"tS", trial, {coprocessor1(4, 0, 0)}, Group::Described},
    {"TSD", trial, {fpu(0), fpu(1), fpu(2), fpu(3)}, Group::Described},
    {"SD", any, {fpu(6), fpu(7)}, Group::Described}, {"TS", any, {fpu(50), fpu(52)}, Group::Described}};
const std::vector<Group> branches = {
    // BEQ BNE BEQL BNEL; BLEZ BGTZ BLEZL; BLTZ BGEZ BLTZL BGEZL; BC1F BC1T BC1TL
    {"st", any, {major(4), major(5), major(20), major(21)}}, {"s", any, {major(6), major(7), major(22)}},
    {"s", any, {regimm(0, 0, 0), regimm(1, 0, 0), regimm(2, 0, 0), regimm(3, 0, 0)}},
    {"", any, {coprocessor1(8, 0, 0), coprocessor1(8, 1, 0), coprocessor1(8, 3, 0)}},
    // BGTZL; BLTZAL BGEZAL BLTZALL BGEZALL; BC1FL
    {"s", any, {major(23), regimm(16, 0, 0), regimm(17, 0, 0), regimm(18, 0, 0), regimm(19, 0, 0)}, Group::Complete},
    {"", any, {coprocessor1(8, 2, 0)}, Group::Complete}};
// clang-format on

/// Where a field is and what it may be. Integer registers leave out r0 and the reserved ones; digits are
/// the address of a load or store, a multiple of them around the middle of the window.
struct Position {
    char field;
    u32 shift, first, count;
};
constexpr Position positions[] = {{'s', 21, 1, 25}, {'t', 16, 1, 25}, {'d', 11, 1, 25}, {'T', 16, 0, 32},
                                  {'S', 11, 0, 32}, {'D', 6, 0, 32},  {'a', 6, 0, 32},  {'i', 0, 0, 65536}};

/// A random program. It is made by running it here, so that each instruction can be chosen to suit the
/// values that it meets; `image` is the program as it was before it ran.
class Program {
  public:
    Program(u64 seed, bool onComplete) : random(seed), complete(onComplete) {
        makeData();
        MipsCpu.PC = origin;
        loadAddress(window, windowAddress + windowSize / 2);
        for (u32 block = 0; block < blockCount; ++block) {
            loadAddress(record, dataAddress + block * recordSize);
            transferRegisters(55, 49);  // LD, LWC1
            for (const u32 end = here() + blockLength * 4; here() < end;) {
                makeInstruction();
            }
            transferRegisters(63, 57);  // SD, SWC1
        }
        loadAddress(a0 + 1, dataAddress);
        loadAddress(a0 + 2, dataSize);
        const u32 exits[] = {immediate(9, 0, a0, 1), immediate(9, 0, v0, 5001), 12,   // write(1, data)
                             immediate(9, 0, a0, 0), immediate(9, 0, v0, 5058), 12};  // exit(0)
        put(here(), exits, sizeof exits);
    }

    /// The program as a file that qemu runs: it writes its data to standard output.
    std::string elf() const {
        constexpr u32 page = 0x1000;
        const u64 size = image.size();
        // clang-format off
        const u64 header[] = {  // of a little-endian MIPS64 executable, and of its one segment
            0x00010102464C457F, 0, 0x0000000100080002, origin, 64, 0, 0x0038004080000000, 1,
            0x0000000700000001, page, origin, origin, size, size, page};
        // clang-format on
        std::string file(page, '\0');
        std::memcpy(file.data(), header, sizeof header);
        return file + image;
    }

  private:
    u32 below(u64 count) { return static_cast<u32>(random() % count); }
    static u32 here() { return static_cast<u32>(MipsCpu.PC); }

    void put(u32 address, const void* bytes, u32 size) {
        std::memcpy(MipsMemory + address, bytes, size);
        std::memcpy(image.data() + (address - origin), bytes, size);
    }

    /// The multiplications write r0, too, where a MIPS64 has no third operand.
    static void step() {
        MipsUpdateCpu();
        MipsCpu.GPR[0] = {};
    }

    void execute(u32 word) {
        put(here(), &word, 4);
        step();
    }

    void loadAddress(u32 number, u32 address) {
        execute(immediate(15, 0, number, address >> 16));
        execute(immediate(13, number, number, address));
    }

    /// Loads or stores all registers; HI and LO are only stored.
    void transferRegisters(u32 integer, u32 floating) {
        for (u32 i = 0; i < 25; ++i) {
            execute(immediate(integer, record, i + 1, i * 8));
        }
        for (const u32 i : {25U, 26U}) {
            execute(special(16 + (i - 25) * 2, 0, 0, spare));
            execute(immediate(63, record, spare, i * 8));
        }
        for (u32 i = 0; i < 32; ++i) {
            execute(immediate(floating, record, i, 27 * 8 + i * 4));
        }
    }

    /// Start values: boundaries and their neighbours, and numbers of all lengths. Of two singles one is a
    /// boundary, and one is near 1, where results are neither zero nor infinite.
    void makeData() {
        constexpr u64 boundaries[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, u64{1} << 63};
        constexpr u64 singles[] = {0, 0x80000000, 1, 0x00800000, 0x7F7FFFFF, 0x7F800000, 0xFF800000};
        for (u32 offset = 0; offset < dataSize; offset += 8) {
            u64 value = below(2) != 0 ? boundaries[below(6)] + below(3) - 1 : random() >> below(64);
            value = below(4) != 0 ? signExtend32(value) : value;
            if (offset % recordSize >= 27 * 8) {
                value = singles[below(7)] | (0x3800000000000000 + (random() & 0x8FFFFFFF00000000));
            }
            put(dataAddress + offset, &value, 8);
        }
    }

    u32 wordOf(const Group& group) {
        u32 word = group.words[below(group.words.size())];
        for (const char field : group.fields) {
            const auto* const position = std::ranges::find(positions, field, &Position::field);
            word |= position != std::end(positions)
                        ? (position->first + below(position->count)) << position->shift
                        : immediate(0, window, 0, (below(64) - 32) * static_cast<u32>(field - '0'));
        }
        return word;
    }

    /// Whether the instruction, at PC, would make a NaN.
    bool makesNaN(u32 word) {
        const MipsCpuRecord before = MipsCpu;
        execute(word);
        return std::ranges::any_of(std::exchange(MipsCpu, before).FPR32,
                                   [](f32 value) { return std::isnan(value); });
    }

    /// A group of those that the processor has.
    const Group& anyOf(const std::vector<Group>& groups) {
        for (;;) {
            const Group& group = groups[below(groups.size())];
            if (group.processor == Group::Both || (group.processor == Group::Complete) == complete) {
                return group;
            }
        }
    }

    u32 suitableWord() {
        for (;;) {
            const Group& group = anyOf(straight);
            const u32 word = wordOf(group);
            const u64 left = gpr(r5900::gpr21To25(word));
            const u64 right = group.fields.ends_with('i') ? signExtend16(word) : gpr(r5900::gpr16To20(word));
            if (group.condition == trial ? !makesNaN(word) : group.condition(left, right)) {
                return word;
            }
        }
    }

    void makeInstruction() {
        if (below(16) != 0) {
            execute(suitableWord());
            return;
        }
        // A branch over DADDIU
        const u32 target = here() + 12;
        const u32 slots[] = {suitableWord(), wordOf({"sti", any, {major(25)}})};
        put(here() + 4, slots, sizeof slots);
        execute(wordOf(anyOf(branches)) | 2);
        for (u32 steps = 0; here() != target && steps < 2; ++steps) {
            step();
        }
    }

    std::mt19937_64 random;
    const bool complete;
    std::string image = std::string(windowAddress + windowSize - origin, '\0');
};

std::string outputInQemu(const std::string& elf) {
    const RunDirectory directory;
    directory.write("program", elf);
    chmod("program", 0700);
    std::string output(dataSize, '\0');
    if (FILE* pipe = popen("qemu-mips64el -cpu MIPS64R2-generic ./program", "r")) {
        output.resize(std::fread(output.data(), 1, dataSize, pipe));
        pclose(pipe);
    }
    return output;
}

TEST_F(MachineTest, RandomProgramsLeaveTheSameRegistersAndMemoryInQemu) {
    if (std::system("command -v qemu-mips64el > /dev/null") != 0) {
        GTEST_SKIP() << "qemu-mips64el is not installed (Debian: apt install qemu-user)";
    }
    const char* const many = std::getenv("TARN_SEEDS");
    const u64 seeds = many != nullptr ? std::stoull(many) : 4;
    for (u64 seed = 1; seed <= seeds; ++seed) {
        const bool complete = seed % 2 == 0;
        restart();
        r5900::chooseProcessor(complete);
        const Program program(seed, complete);
        r5900::chooseProcessor(false);
        ASSERT_EQ(MipsCpu.pause, 0) << "seed " << seed << ", at " << hex(MipsCpu.PC);
        EXPECT_GE(MipsCpu.cycle, blockCount * blockLength);
        const std::string expected = outputInQemu(program.elf());
        ASSERT_EQ(expected.size(), dataSize);
        for (u32 i = 0; i < dataSize; ++i) {
            ASSERT_EQ(MipsMemory[dataAddress + i], static_cast<u8>(expected[i]))
                << "seed " << seed << ", block " << i / recordSize << ", byte " << i % recordSize;
        }
    }
}

}  // namespace
}  // namespace tarn::test
