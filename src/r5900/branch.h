// Branches and jumps: conditions and targets.
#pragma once

#include "r5900/fields.h"
#include "r5900/fpu_registers.h"
#include "r5900/registers.h"

namespace tarn::r5900 {

constexpr u64 branchTarget(u64 pc, u16 offset) { return pc + 4 + signExtend16(offset) * 4; }

// Conditional branches. The conditions look at whole doublewords.

inline bool BEQ(BranchFields f) { return gpr(f.rs) == gpr(f.rt); }
inline bool BNE(BranchFields f) { return gpr(f.rs) != gpr(f.rt); }
inline bool BLEZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) <= 0; }
inline bool BGTZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) > 0; }
inline bool BLTZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) < 0; }
inline bool BGEZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) >= 0; }

// Branches on the floating-point condition bit.

inline bool BC1F(FpuBranchFields) { return !conditionBit(); }
inline bool BC1T(FpuBranchFields) { return conditionBit(); }

// Jumps: the target of each, given its PC. The link is written before the delay slot.

/// Writes the return address of a jump at `pc`: the address after its delay slot.
inline void link(Gpr reg, u64 pc) { setDoubleword(reg, pc + 8); }

/// The link register of JAL.
inline constexpr Gpr returnAddress = Gpr::numbered(REG_RA);

/// The index of a word in memory becomes the low 32 bits of PC.
constexpr u64 J(JumpFields f, u64 pc) { return (pc & ~u64{0xFFFFFFFF}) | u64{f.instr_index} * 4; }

inline u64 JAL(JumpFields f, u64 pc) {
    link(returnAddress, pc);
    return J(f, pc);
}

inline u64 JR(RegisterFields f, u64) { return gpr(f.rs); }

inline u64 JALR(RegisterFields f, u64 pc) {
    const u64 target = gpr(f.rs);
    link(f.rd, pc);
    return target;
}

/// With rd = r0, the delay slot already sees 0 in it.
inline u64 JALR_complete(RegisterFields f, u64 pc) {
    const u64 target = JALR(f, pc);
    MipsCpu.GPR[0] = {};
    return target;
}

// Branches that link whether or not they are taken; on the complete processor only.

inline bool BLTZAL(ZeroBranchFields f, u64 pc) {
    const bool taken = BLTZ(f);
    link(returnAddress, pc);
    return taken;
}
inline bool BGEZAL(ZeroBranchFields f, u64 pc) {
    const bool taken = BGEZ(f);
    link(returnAddress, pc);
    return taken;
}

}  // namespace tarn::r5900
