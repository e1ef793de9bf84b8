// Branches and jumps: conditions and targets.
#pragma once

#include "r5900/fields.h"
#include "r5900/fpu_registers.h"
#include "r5900/gpr.h"
#include "r5900/semantics.h"

namespace tarn::r5900 {

constexpr u64 branchTarget(u64 pc, u16 offset) { return pc + 4 + signExtend16(offset) * 4; }

// Conditions of branches, which look at whole doublewords. They take the CPU so that observers can ask about
// one that differs from MipsCpu.

using Cpu = const MipsCpuRecord&;

inline s64 signedGpr(Cpu cpu, Gpr reg) { return static_cast<s64>(gpr(cpu, reg)); }

inline bool BEQ(BranchFields f, Cpu cpu) { return gpr(cpu, f.rs) == gpr(cpu, f.rt); }
inline bool BNE(BranchFields f, Cpu cpu) { return gpr(cpu, f.rs) != gpr(cpu, f.rt); }
inline bool BLEZ(ZeroBranchFields f, Cpu cpu) { return signedGpr(cpu, f.rs) <= 0; }
inline bool BGTZ(ZeroBranchFields f, Cpu cpu) { return signedGpr(cpu, f.rs) > 0; }
inline bool BLTZ(ZeroBranchFields f, Cpu cpu) { return signedGpr(cpu, f.rs) < 0; }
inline bool BGEZ(ZeroBranchFields f, Cpu cpu) { return signedGpr(cpu, f.rs) >= 0; }

inline bool BC1F(FpuBranchFields, Cpu cpu) { return !conditionBit(cpu); }
inline bool BC1T(FpuBranchFields, Cpu cpu) { return conditionBit(cpu); }

// Jumps: the target of each, given its PC. The link is written before the delay slot.

/// The return address of a jump at `pc`: the address after its delay slot.
constexpr u64 linkOf(u64 pc) { return pc + 8; }
inline void link(Gpr reg, u64 pc) { setDoubleword(reg, linkOf(pc)); }

/// The link register of JAL, and of the branches that link.
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

/// Whether a branch writes the return address, which it does even if it is not taken.
enum class Link : u8 { No, Yes };

/// Whether the branch at `pc` is taken; links.
template <auto condition, Link links>
inline bool decideBranch(const FieldsOf<condition>& fields, u64 pc) {
    const bool taken = condition(fields, MipsCpu);
    if constexpr (links == Link::Yes) {
        link(returnAddress, pc);
    }
    return taken;
}

}  // namespace tarn::r5900
