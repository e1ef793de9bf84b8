// Owns the decoding of loads, stores and taken branches for watchpoints, before anything is executed.
#include "gdb/memory_access.h"

#include "base/bits.h"
#include "memory/areas.h"
#include "r5900/mips_cpu.h"

#include <array>
#include <cstring>

namespace tarn::gdb {

namespace {

constexpr unsigned nestingLimit = 1024;  ///< as deep as the interpreter follows branches in delay slots

/// The general-purpose registers as a delay slot sees them: a jump before it may have set one of them.
struct RegisterView {
    std::array<u64, 32> values{};

    RegisterView() {
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = MipsCpu.GPR[i].low;
        }
    }
};

constexpr u32 major(u32 word) { return bits(word, 26, 6); }
constexpr u32 rsOf(u32 word) { return bits(word, 21, 5); }
constexpr u32 rtOf(u32 word) { return bits(word, 16, 5); }
constexpr u32 rdOf(u32 word) { return bits(word, 11, 5); }

std::optional<u32> fetch(u64 pc) {
    const auto offset = static_cast<u32>(pc);
    if (MipsMemory == nullptr || offset > mainMemorySize - sizeof(u32)) {
        return std::nullopt;
    }
    u32 word = 0;
    std::memcpy(&word, MipsMemory + offset, sizeof word);
    return word;
}

std::optional<MemoryAccess> accessOf(u32 word, const RegisterView& registers) {
    constexpr bool load = false;
    constexpr bool store = true;
    const auto access = [&](u8 length, bool isStore) {
        const u64 address = registers.values[rsOf(word)] + signExtend16(word);
        return MemoryAccess{static_cast<u32>(address), length, isStore};
    };
    switch (major(word)) {
    case 32:  // LB
    case 36:  // LBU
        return access(1, load);
    case 33:  // LH
    case 37:  // LHU
        return access(2, load);
    case 34:  // LWL
    case 35:  // LW
    case 38:  // LWR
    case 39:  // LWU
    case 49:  // LWC1
        return access(4, load);
    case 26:  // LDL
    case 27:  // LDR
    case 55:  // LD
        return access(8, load);
    case 30:  // LQ
        return access(16, load);
    case 40:  // SB
        return access(1, store);
    case 41:  // SH
        return access(2, store);
    case 42:  // SWL
    case 43:  // SW
    case 46:  // SWR
    case 57:  // SWC1
        return access(4, store);
    case 44:  // SDL
    case 45:  // SDR
    case 63:  // SD
        return access(8, store);
    case 31:  // SQ
        return access(16, store);
    default:
        return std::nullopt;
    }
}

/// True when the word is a branch or jump that runs its delay slot now. Sets the link register that the slot
/// sees.
bool runsDelaySlot(u32 word, u64 pc, RegisterView& registers) {
    const u64 rs = registers.values[rsOf(word)];
    const u64 rt = registers.values[rtOf(word)];
    const auto signedRs = static_cast<s64>(rs);
    switch (major(word)) {
    case 0:                           // SPECIAL
        if (bits(word, 0, 6) == 9) {  // JALR
            registers.values[rdOf(word)] = pc + 8;
            return true;
        }
        return bits(word, 0, 6) == 8;  // JR
    case 1:                            // REGIMM
        switch (rtOf(word)) {
        case 0:  // BLTZ
        case 2:  // BLTZL
            return signedRs < 0;
        case 1:  // BGEZ
        case 3:  // BGEZL
            return signedRs >= 0;
        default:
            return false;
        }
    case 2:  // J
        return true;
    case 3:  // JAL
        registers.values[REG_RA] = pc + 8;
        return true;
    case 4:   // BEQ
    case 20:  // BEQL
        return rs == rt;
    case 5:   // BNE
    case 21:  // BNEL
        return rs != rt;
    case 6:   // BLEZ
    case 22:  // BLEZL
        return signedRs <= 0;
    case 7:  // BGTZ
        return signedRs > 0;
    case 17: {  // COP1: only BC1 on condition 0 branches
        if (rsOf(word) != 8 || bits(word, 18, 3) != 0) {
            return false;
        }
        const bool condition = bit(MipsCpu.FCR[31], 23) != 0;
        switch (bits(word, 16, 2)) {
        case 0:  // BC1F
            return !condition;
        case 1:  // BC1T
        case 3:  // BC1TL
            return condition;
        default:
            return false;
        }
    }
    default:
        return false;
    }
}

}  // namespace

std::optional<MemoryAccess> nextMemoryAccess() {
    RegisterView registers;
    u64 pc = MipsCpu.PC;
    for (unsigned depth = 0; depth <= nestingLimit; ++depth) {
        const std::optional<u32> word = fetch(pc);
        if (!word) {
            return std::nullopt;
        }
        if (!runsDelaySlot(*word, pc, registers)) {
            return accessOf(*word, registers);
        }
        pc += 4;
    }
    return std::nullopt;
}

}  // namespace tarn::gdb
