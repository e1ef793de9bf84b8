// Owns the look ahead for watchpoints: taken branches and their delay slots, loads and stores, before they
// happen.
#include "gdb/memory_access.h"

#include "machine/machine.h"
#include "memory/memory.h"
#include "r5900/branch.h"
#include "r5900/fields.h"

namespace tarn::gdb {

namespace {

using namespace r5900;

/// Puts back what looking ahead changes: PC, which moves over branches, and the registers that jumps link.
class Rewind {
  public:
    Rewind() = default;
    ~Rewind() {
        MipsCpu.PC = pc;
        if (registers) {
            MipsCpu.GPR = *registers;
        }
    }
    Rewind(const Rewind&) = delete;
    Rewind& operator=(const Rewind&) = delete;

    /// Links a register as a jump at PC does.
    void linkRegister(Gpr reg) {
        if (!registers) {
            registers = MipsCpu.GPR;
        }
        link(reg, MipsCpu.PC);
    }

  private:
    u64 pc = MipsCpu.PC;
    std::optional<decltype(MipsCpu.GPR)> registers;  ///< kept only when a jump links: this runs at every step
};

std::optional<u32> fetch() {
    const auto address = static_cast<u32>(MipsCpu.PC);
    if (MipsMemory == nullptr || address > mainMemorySize - sizeof(u32)) {
        return std::nullopt;
    }
    return loadFrom<u32>(MipsMemory, address);
}

/// Whether the word is a taken branch or a jump, so that its step runs the delay slot too. Links, as the slot
/// sees it.
bool runsDelaySlot(u32 word, Rewind& rewind) {
    const auto branch = BranchFields::from(word);
    const auto zeroBranch = ZeroBranchFields::from(word);
    switch (majorOpcode(word)) {
    case 0:  // SPECIAL
        if (functionCode(word) == 9) {
            rewind.linkRegister(RegisterFields::from(word).rd);  // JALR
            return true;
        }
        return functionCode(word) == 8;  // JR
    case 1:                              // REGIMM
        switch (regimmCode(word)) {
        case 0:  // BLTZ
        case 2:  // BLTZL
            return BLTZ(zeroBranch);
        case 1:  // BGEZ
        case 3:  // BGEZL
            return BGEZ(zeroBranch);
        default:
            return false;
        }
    case 2:  // J
        return true;
    case 3:  // JAL
        rewind.linkRegister(returnAddress);
        return true;
    case 4:   // BEQ
    case 20:  // BEQL
        return BEQ(branch);
    case 5:   // BNE
    case 21:  // BNEL
        return BNE(branch);
    case 6:   // BLEZ
    case 22:  // BLEZL
        return BLEZ(zeroBranch);
    case 7:
        return BGTZ(zeroBranch);
    case 17:  // COP1: only BC1 branches, and only on condition code 0
        if (coprocessorCode(word) != 8 || FpuBranchFields::from(word).ccb != 0) {
            return false;
        }
        switch (conditionBranchCode(word)) {
        case 0:  // BC1F
            return !conditionBit();
        case 1:  // BC1T
        case 3:  // BC1TL
            return conditionBit();
        default:
            return false;
        }
    default:
        return false;
    }
}

/// The load or store that the word makes by itself.
std::optional<MemoryAccess> accessOf(u32 word) {
    const auto fields = MemoryFields::from(word);
    const auto access = [&](Access kind, Width width) {
        return MemoryAccess{guestAddress(gpr(fields.base), static_cast<s16>(fields.offset)), bytesOf(width),
                            kind};
    };
    switch (majorOpcode(word)) {
    case 32:  // LB
    case 36:  // LBU
        return access(Access::Load, Width::Byte);
    case 33:  // LH
    case 37:  // LHU
        return access(Access::Load, Width::Halfword);
    case 34:  // LWL
    case 35:  // LW
    case 38:  // LWR
    case 39:  // LWU
    case 49:  // LWC1
        return access(Access::Load, Width::Word);
    case 26:  // LDL
    case 27:  // LDR
    case 55:  // LD
        return access(Access::Load, Width::Doubleword);
    case 30:  // LQ
        return access(Access::Load, Width::Quadword);
    case 40:  // SB
        return access(Access::Store, Width::Byte);
    case 41:  // SH
        return access(Access::Store, Width::Halfword);
    case 42:  // SWL
    case 43:  // SW
    case 46:  // SWR
    case 57:  // SWC1
        return access(Access::Store, Width::Word);
    case 44:  // SDL
    case 45:  // SDR
    case 63:  // SD
        return access(Access::Store, Width::Doubleword);
    case 31:  // SQ
        return access(Access::Store, Width::Quadword);
    default:
        return std::nullopt;
    }
}

}  // namespace

std::optional<MemoryAccess> nextMemoryAccess() {
    Rewind rewind;
    for (u32 depth = 0; depth <= maximumDelaySlotDepth; ++depth) {
        const std::optional<u32> word = fetch();
        if (!word) {
            return std::nullopt;
        }
        if (!runsDelaySlot(*word, rewind)) {
            return accessOf(*word);
        }
        MipsCpu.PC += 4;
    }
    return std::nullopt;
}

}  // namespace tarn::gdb
