// Holds the interpreter against an independent processor: random programs of instructions that a MIPS64 has
// with the same meaning run here and in qemu's user mode, and must leave the same registers and memory.
#include "r5900/interpreter.h"
#include "r5900/registers.h"
#include "r5900/words.h"
#include "support/machine_test.h"
#include "support/temporary_file.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <elf.h>
#include <random>
#include <sstream>
#include <sys/stat.h>

namespace tarn {
namespace {

using namespace test;
using r5900::gpr;

// The layout of a program, at the same addresses for both processors. A block is preceded by the loading of
// all registers from its record, and followed by the storing of all into it.
constexpr u32 blockCount = 2048, blockLength = 128;
constexpr u32 recordSize = 27 * 8 + 32 * 4;  // r1 to r25, HI, LO; fp0 to fp31
constexpr u32 windowSize = 1024;             // what the random loads and stores reach
constexpr u32 origin = 0x00100000, restore = origin + 0x100, save = origin + 0x200, body = origin + 0x300;
constexpr u32 dataAddress = 0x00300000, windowAddress = dataAddress + blockCount * recordSize;
constexpr u32 dataSize = blockCount * recordSize + windowSize;
constexpr u32 record = 26, window = 27, spare = 28;  // registers that random instructions do not write

// What must hold of the operands for both processors to agree. `trial` is a condition on the result: it must
// be no NaN, which they code differently.
using Condition = bool (*)(u64 left, u64 right);
bool any(u64, u64) { return true; }
bool words(u64 left, u64 right) { return left == signExtend32(left) && right == signExtend32(right); }
bool wordSum(u64 left, u64 right) { return words(left, right) && words(left + right, 0); }
bool wordDifference(u64 left, u64 right) { return words(left, right) && words(left - right, 0); }
bool difference(u64 left, u64 right) { return ((left ^ right) & (left ^ (left - right))) >> 63 == 0; }
bool quotient(u64 left, u64 right) { return words(left, right) && right != 0 && words(0 - left, 0); }
constexpr Condition trial = nullptr;

/// Instructions with the same random fields (`positions`).
struct Group {
    std::string fields;
    Condition condition;
    std::string mnemonics;
};

const Group straightGroups[] = {
    {"", any, "SYNC"},
    {"d", any, "MFHI MFLO"},
    {"sti", any, "SLTI SLTIU ANDI ORI XORI DADDIU"},
    {"sti", words, "ADDIU"},
    {"sti", wordSum, "ADDI"},
    {"ti", any, "LUI"},
    {"std", any, "AND OR XOR SLTU DADDU MOVZ MOVN SLLV"},
    {"std", words, "ADDU SUBU SLT SLRV SRAV"},
    {"std", wordSum, "ADD"},
    {"std", wordDifference, "SUB"},
    {"std", difference, "DSUBU"},
    {"tda", any, "SLL DSLL DSRL DSLL32 DSRL32 DSRA32"},
    {"tda", words, "SRL SRA"},
    {"st", any, "DMULTU"},
    {"st", words, "MULT"},
    {"st", quotient, "DIV DIVU"},
    {"t1", any, "LB LBU SB"},
    {"t2", any, "LH LHU SH"},
    {"t4", any, "LW LWU SW"},
    {"t8", any, "LD SD"},
    {"T4", trial, "LWC1"},
    {"T4", any, "SWC1"},
    {"tS", trial, "MTC1"},
    {"TSD", trial, "ADD_S SUB_S MUL_S DIV_S"},
    {"SD", any, "MOV_S NEG_S"},
    {"TS", any, "C_EQ_S C_OLT_S"},
};
const Group branchGroups[] = {
    {"st", any, "BEQ BNE BEQL BNEL"},
    {"s", any, "BLEZ BGTZ BLTZ BGEZ BLEZL BLTZL BGEZL"},
    {"", any, "BC1F BC1T BC1TL"},
};

/// Where a field is and what it may be. Integer registers leave out r0 and the reserved ones; digits are
/// the address of a load or store, a multiple of them around the middle of the window.
struct Position {
    char field;
    u32 shift, first, count;
};
constexpr Position positions[] = {{'s', 21, 1, 25}, {'t', 16, 1, 25}, {'d', 11, 1, 25}, {'T', 16, 0, 32},
                                  {'S', 11, 0, 32}, {'D', 6, 0, 32},  {'a', 6, 0, 32},  {'i', 0, 0, 65536}};

/// The instruction word of a mnemonic, without operands.
u32 wordOf(const std::string& mnemonic) {
    for (u32 i = 0; i < 64; ++i) {
        for (const u32 word : {i << 26, i, regimm(i, 0, 0), coprocessor1(i, 0, 0), coprocessor1(8, i, 0),
                               single(i, 0, 0, 0)}) {
            if (mnemonic == mnemonicOf(word)) {
                return word;
            }
        }
    }
    return 0;
}

/// A random program. It is made by running it here, so that each instruction can be chosen to suit the
/// values that it meets; `image` is the program as it was before it ran.
class Program {
  public:
    explicit Program(u64 seed) : random(seed) {
        makeData();
        makeTransfers(restore, "LD", "LWC1");
        makeTransfers(save, "SD", "SWC1");
        MipsCpu.PC = origin;
        loadAddress(record, dataAddress);
        loadAddress(window, windowAddress + windowSize / 2);
        execute(jump(2, body / 4));
        for (u32 block = 0; block < blockCount; ++block) {
            call(restore);
            for (const u32 end = here() + blockLength * 4; here() < end;) {
                makeInstruction();
            }
            call(save);
        }
        loadAddress(a0 + 1, dataAddress);
        loadAddress(a0 + 2, dataSize);
        const u32 exits[] = {immediate(9, 0, a0, 1), immediate(9, 0, v0, 5001), 12,   // write(1, data)
                             immediate(9, 0, a0, 0), immediate(9, 0, v0, 5058), 12};  // exit(0)
        put(here(), exits, sizeof exits);
    }

    /// The program as a file that qemu runs: it writes its data to standard output.
    std::string elf() const {
        Elf64_Ehdr header{};
        std::memcpy(header.e_ident, ELFMAG "\2\1\1", 7);
        header.e_type = ET_EXEC;
        header.e_machine = EM_MIPS;
        header.e_version = 1;
        header.e_entry = origin;
        header.e_phoff = header.e_ehsize = sizeof header;
        header.e_flags = EF_MIPS_ARCH_64R2;
        header.e_phentsize = sizeof(Elf64_Phdr);
        header.e_phnum = 1;
        constexpr u32 page = 0x1000;
        const Elf64_Phdr segment{PT_LOAD, PF_R | PF_W | PF_X, page,         origin,
                                 origin,  image.size(),       image.size(), page};
        std::string file(page, '\0');
        std::memcpy(file.data(), &header, sizeof header);
        std::memcpy(file.data() + sizeof header, &segment, sizeof segment);
        return file + image;
    }

  private:
    u32 below(u64 count) { return static_cast<u32>(random() % count); }
    static u32 here() { return static_cast<u32>(MipsCpu.PC); }

    void put(u32 address, const void* bytes, u32 size) {
        std::memcpy(MipsMemory + address, bytes, size);
        std::memcpy(image.data() + (address - origin), bytes, size);
    }

    /// Executes up to an address. The multiplications write r0, too, where a MIPS64 has no third operand.
    static void run(u32 end) {
        while (here() != end && MipsCpu.pause == 0) {
            MipsUpdateCpu();
            MipsCpu.GPR[0] = {};
        }
    }

    void execute(u32 word) {
        put(here(), &word, 4);
        MipsUpdateCpu();
        MipsCpu.GPR[0] = {};
    }

    void loadAddress(u32 number, u32 address) {
        execute(immediate(15, 0, number, address >> 16));
        execute(immediate(13, number, number, address));
    }

    void call(u32 address) {
        const u32 back = here() + 8;
        execute(jump(3, address / 4));
        run(back);
    }

    /// A subroutine that loads or stores the registers of a record; the storing one goes on to the next.
    void makeTransfers(u32 address, const char* integer, const char* floating) {
        const bool storing = address == save;
        std::vector<u32> code;
        for (u32 i = 0; i < 25; ++i) {
            code.push_back(wordOf(integer) | immediate(0, record, i + 1, i * 8));
        }
        for (u32 i = 25; storing && i < 27; ++i) {
            code.push_back(wordOf(i == 25 ? "MFHI" : "MFLO") | spare << 11);
            code.push_back(wordOf(integer) | immediate(0, record, spare, i * 8));
        }
        for (u32 i = 0; i < 32; ++i) {
            code.push_back(wordOf(floating) | immediate(0, record, i, 27 * 8 + i * 4));
        }
        code.push_back(wordOf("JR") ^ (ra << 21));
        code.push_back(storing ? wordOf("DADDIU") | immediate(0, record, record, recordSize) : 0);
        put(address, code.data(), static_cast<u32>(code.size() * 4));
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

    u32 filled(u32 word, const std::string& fields) {
        for (const char field : fields) {
            const auto* const position = std::ranges::find(positions, field, &Position::field);
            if (position != std::end(positions)) {
                word |= (position->first + below(position->count)) << position->shift;
            } else {
                word |= immediate(0, window, 0, (below(64) - 32) * static_cast<u32>(field - '0'));
            }
        }
        return word;
    }

    /// Whether the instruction, at PC, would make a NaN.
    bool makesNaN(u32 word) {
        const MipsCpuRecord before = MipsCpu;
        execute(word);
        const bool found = std::ranges::any_of(MipsCpu.FPR32, [](f32 value) { return std::isnan(value); });
        MipsCpu = before;
        return found;
    }

    u32 suitableWord() {
        for (;;) {
            const auto& [group, form] = straight[below(straight.size())];
            const u32 word = filled(form, group->fields);
            const u64 left = gpr(static_cast<u8>(bits(word, 21, 5)));
            const u64 right = gpr(static_cast<u8>(bits(word, 16, 5)));
            if (group->condition == trial
                    ? !makesNaN(word)
                    : group->condition(left, group->fields.ends_with('i') ? signExtend16(word) : right)) {
                return word;
            }
        }
    }

    void makeInstruction() {
        const u32 kind = below(16);
        if (kind == 0) {  // a branch over one instruction
            const u32 target = here() + 12;
            const u32 slots[] = {suitableWord(), filled(wordOf("DADDIU"), "sti")};
            put(here() + 4, slots, sizeof slots);
            const auto& [group, form] = branches[below(branches.size())];
            execute(filled(form, group->fields) | 2);
            run(target);
        } else if (kind == 1) {  // the idiom for an unaligned doubleword
            const u32 operands = filled(0, "t1");
            execute(wordOf("LDL") | (operands & ~0xFFFFU) | ((operands + 7) & 0xFFFF));
            execute(wordOf("LDR") | operands);
        } else {
            execute(suitableWord());
        }
    }

    struct Instruction {
        const Group* group;
        u32 word;
    };

    template <std::size_t size>
    static std::vector<Instruction> instructionsOf(const Group (&groups)[size]) {
        std::vector<Instruction> instructions;
        for (const Group& group : groups) {
            std::istringstream names(group.mnemonics);
            for (std::string name; names >> name;) {
                instructions.push_back({&group, wordOf(name)});
            }
        }
        return instructions;
    }

    const std::vector<Instruction> straight = instructionsOf(straightGroups);
    const std::vector<Instruction> branches = instructionsOf(branchGroups);
    std::mt19937_64 random;
    std::string image = std::string(windowAddress + windowSize - origin, '\0');
};

std::string outputInQemu(const std::string& elf) {
    const TemporaryFile file(elf);
    chmod(file.path(), 0700);
    FILE* pipe = popen((std::string("qemu-mips64el -cpu MIPS64R2-generic ") + file.path()).c_str(), "r");
    std::string output(dataSize, '\0');
    output.resize(pipe != nullptr ? std::fread(output.data(), 1, dataSize, pipe) : 0);
    pclose(pipe);
    return output;
}

class QemuCheck : public MachineTest, public testing::WithParamInterface<u64> {};

TEST_P(QemuCheck, RandomProgramsLeaveTheSameRegistersAndMemory) {
    if (std::system("command -v qemu-mips64el > /dev/null") != 0) {
        GTEST_SKIP() << "qemu-mips64el is not installed (Debian: apt install qemu-user)";
    }
    const Program program(GetParam());
    ASSERT_EQ(MipsCpu.pause, 0) << "seed " << GetParam() << ", at " << hex(MipsCpu.PC);
    EXPECT_GE(MipsCpu.cycle, blockCount * blockLength);
    const std::string expected = outputInQemu(program.elf());
    ASSERT_EQ(expected.size(), dataSize);
    for (u32 i = 0; i < dataSize; ++i) {
        ASSERT_EQ(MipsMemory[dataAddress + i], static_cast<u8>(expected[i]))
            << "seed " << GetParam() << ", block " << i / recordSize << ", byte " << i % recordSize;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, QemuCheck, testing::Range<u64>(1, 5));

}  // namespace
}  // namespace tarn
