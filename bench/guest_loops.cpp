// The loops that interpreters are measured with, as code and as ELF files.
#include "guest_loops.h"

#include "base/file.h"
#include "guest_code.h"

#include <algorithm>
#include <cstdio>

namespace tarn::bench {

namespace {

constexpr std::array<u32, 0> noSetup{};

constexpr std::array aluBody{
    addiu(t1, t1, 1), xor_(t2, t1, t2),  sll(t3, t2, 3),    addu(t4, t3, t4), slt(t5, t4, t1),
    or_(t6, t5, t2),  addiu(t0, t0, -1), bne(t0, zero, -8), srl(t7, t4, 5),
};

constexpr std::array mixedBody{
    lw(t1, 0, a0),    addiu(t0, t0, -1),  addu(t2, t2, t1), sw(t2, 4, a0),    andi(t3, t2, 1),
    beq(t3, zero, 3), xor_(t4, t4, t2),   lbu(t5, 8, a0),   addu(t4, t4, t5), sh(t4, 10, a0),
    lhu(t6, 10, a0),  bne(t0, zero, -12), slt(t7, t4, t2),
};
constexpr std::array mixedSetup{
    addiu(t1, zero, 12345),
    sw(t1, 0, a0),
    sw(zero, 8, a0),
};

constexpr std::array floatBody{
    addS(1, 1, 2), mulS(3, 1, 4), subS(5, 3, 2),     cOltS(5, 6),       bc1f(2),
    movS(7, 5),    addS(7, 7, 2), addiu(t0, t0, -1), bne(t0, zero, -9), mulS(8, 7, 4),
};
constexpr std::array floatSetup{
    lui(t1, 0x3F80), mtc1(t1, 2),  // 1.0
    mtc1(zero, 1),                 // 0.0
    lui(t1, 0x3F00), mtc1(t1, 4),  // 0.5
    lui(t1, 0x4974), mtc1(t1, 6),  // 999424.0
};

void append(std::vector<u32>& program, std::span<const u32> words) {
    program.insert(program.end(), words.begin(), words.end());
}

void appendConstant(std::vector<u32>& program, u32 reg, u32 value) {
    program.push_back(lui(reg, static_cast<s32>(value >> 16)));
    program.push_back(ori(reg, reg, static_cast<s32>(value & 0xFFFF)));
}

/// A store to D3_CHCR, a register that the DMA controller does not know and names on standard output.
void appendMarker(std::vector<u32>& program) {
    appendConstant(program, a1, 0x1000B000);
    program.push_back(sw(zero, 0, a1));
}

void appendExit(std::vector<u32>& program, s32 call) {
    program.push_back(addiu(a0, zero, 0));
    program.push_back(addiu(v0, zero, call));
    program.push_back(syscall());
}

struct ElfImage {
    std::vector<u8> bytes;
    void half(u32 value) { put(value, 2); }
    void word(u32 value) { put(value, 4); }

  private:
    void put(u32 value, unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            bytes.push_back(static_cast<u8>(value >> (8 * i)));
        }
    }
};

}  // namespace

constexpr std::array<GuestLoop, 3> loops{{
    {"alu", noSetup, aluBody},
    {"mixed", mixedSetup, mixedBody},
    {"float", floatSetup, floatBody},
}};
const std::array<GuestLoop, 3> guestLoops = loops;

std::vector<u32> guestProgram(const GuestLoop& loop, u32 iterations, Ending ending) {
    std::vector<u32> program;
    appendConstant(program, t0, iterations);
    appendConstant(program, a0, guestDataAddress);
    append(program, loop.setup);
    append(program, loop.body);
    if (ending == Ending::Console) {
        appendMarker(program);
        program.push_back(beq(zero, zero, -static_cast<s32>(program.size()) - 1));  // from the start
        program.push_back(nop());
    } else {
        appendExit(program, ending == Ending::LinuxN32 ? 6058 : 4001);
    }
    return program;
}

bool writeGuestElf(const char* path, std::span<const u32> program, Ending ending) {
    constexpr u32 headerBytes = 52;
    constexpr u32 codeOffset = 0x1000;  // page-aligned like the address
    // Code and, on another page, data.
    const u32 imageBytes = std::max(0x9000U, static_cast<u32>(program.size_bytes()));
    const u32 flags = ending == Ending::LinuxN32 ? 0x80000020 : 0;  // MIPS64R2, N32

    ElfImage elf;
    elf.bytes = {0x7F, 'E', 'L', 'F', 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    elf.half(2);                 // executable
    elf.half(8);                 // MIPS
    elf.word(1);                 // version
    elf.word(guestCodeAddress);  // entry
    elf.word(headerBytes);       // program headers
    elf.word(0);                 // section headers
    elf.word(flags);
    elf.half(headerBytes);
    elf.half(32);  // program header size
    elf.half(1);   // program headers
    elf.half(40);  // section header size
    elf.half(0);   // sections
    elf.half(0);
    elf.word(1);                 // loadable
    elf.word(codeOffset);        // file offset
    elf.word(guestCodeAddress);  // virtual address
    elf.word(guestCodeAddress);  // physical address
    elf.word(imageBytes);        // in the file
    elf.word(imageBytes);        // in memory
    elf.word(7);                 // readable, writable, executable
    elf.word(0x1000);            // alignment
    elf.bytes.resize(codeOffset, 0);
    for (const u32 word : program) {
        elf.word(word);
    }
    elf.bytes.resize(codeOffset + imageBytes, 0);

    FilePtr file(std::fopen(path, "wb"));
    if (file == nullptr) {
        return false;
    }
    const bool written = std::fwrite(elf.bytes.data(), 1, elf.bytes.size(), file.get()) == elf.bytes.size();
    return std::fclose(file.release()) == 0 && written;
}

}  // namespace tarn::bench
