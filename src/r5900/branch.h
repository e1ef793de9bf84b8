// Owns the branches and jumps, and the delay slot that each of them has.
#pragma once

#include "base/diagnostics.h"
#include "r5900/fpu_registers.h"
#include "r5900/interpreter.h"
#include "r5900/registers.h"
#include "r5900/trace.h"

#include <cstdio>

namespace tarn::r5900 {

/// The deepest nesting of delay slots: a branch in a delay slot has a delay slot of its own, inside the
/// first. Deeper, the CPU pauses, so that no program can use up the host's stack.
inline constexpr u32 maximumDelaySlotDepth = 1024;

/// Executes the instruction at PC as the delay slot of the current one. One that is nested too deeply is
/// refused as a fetch outside memory is: it counts in `cycle`, and pauses.
inline void executeDelaySlot() {
    if (MipsCpu.delaySlotDepth == maximumDelaySlotDepth) [[unlikely]] {
        MipsCpu.cycle += 1;
        MipsCpu.pause = 1;
        return;
    }
    MipsCpu.delaySlotDepth += 1;
    MipsUpdateCpu();
    MipsCpu.delaySlotDepth -= 1;
}

/// What a taken branch and every jump does once its trace line is written. The line is shown at once: the
/// delay slot writes its own, which is shown twice, by its step and by the one that began with the branch.
/// PC is the target in the end, whatever the delay slot made of it.
inline void jumpTo(u64 target) {
    if (tracing()) [[unlikely]] {
        showTraceLine();
    }
    MipsCpu.PC += 4;
    executeDelaySlot();
    MipsCpu.PC = target;
}

constexpr u64 branchTarget(u64 pc, u16 offset) { return pc + 4 + signExtend16(offset) * 4; }

/// What a branch that is not taken does with the instruction in its delay slot.
enum class DelaySlot : u8 { Executed, Skipped };

template <DelaySlot whenNotTaken>
inline void branchIf(bool taken, u64 target) {
    if (taken) {
        jumpTo(target);
    } else {
        MipsCpu.PC += whenNotTaken == DelaySlot::Executed ? 4 : 8;
    }
}

/// Writes the trace line of the current branch when tracing.
template <class Fields>
inline void traceBranchIfOn(const char* format) {
    if (tracing()) [[unlikely]] {
        const auto fields = Fields::from(MipsCpu.opcode);
        traceOperands(format, fields, branchTarget(MipsCpu.PC, fields.offset));
    }
}

/// The body of the handler of a branch that compares integer registers.
template <class Fields, bool (*condition)(Fields), DelaySlot whenNotTaken = DelaySlot::Executed>
inline void branch(const char* format) {
    traceBranchIfOn<Fields>(format);
    const auto fields = Fields::from(MipsCpu.opcode);
    branchIf<whenNotTaken>(condition(fields), branchTarget(MipsCpu.PC, fields.offset));
}

template <class Fields, bool (*condition)(Fields)>
inline void branchLikely(const char* format) {
    branch<Fields, condition, DelaySlot::Skipped>(format);
}

// Conditional branches. The conditions look at whole doublewords.

inline bool BEQ(BranchFields f) { return gpr(f.rs) == gpr(f.rt); }
inline void BEQ() { branch<BranchFields, BEQ>("beq %s,%s,%4llx"); }
inline void BEQL() { branchLikely<BranchFields, BEQ>("beql %s,%s,%4llx"); }

inline bool BNE(BranchFields f) { return gpr(f.rs) != gpr(f.rt); }
inline void BNE() { branch<BranchFields, BNE>("bne %s,%s,%4llx"); }
inline void BNEL() { branchLikely<BranchFields, BNE>("bnel %s,%s,%4llx"); }

inline bool BLEZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) <= 0; }
inline void BLEZ() { branch<ZeroBranchFields, BLEZ>("blez %s,%4llx"); }
inline void BLEZL() { branchLikely<ZeroBranchFields, BLEZ>("blezl %s,%4llx"); }

inline bool BGTZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) > 0; }
inline void BGTZ() { branch<ZeroBranchFields, BGTZ>("bgtz %s,%4llx"); }

inline bool BLTZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) < 0; }
inline void BLTZ() { branch<ZeroBranchFields, BLTZ>("bltz %s,%4llx"); }
inline void BLTZL() { branchLikely<ZeroBranchFields, BLTZ>("bltzl %s,%4llx"); }

inline bool BGEZ(ZeroBranchFields f) { return static_cast<s64>(gpr(f.rs)) >= 0; }
inline void BGEZ() { branch<ZeroBranchFields, BGEZ>("bgez %s,%4llx"); }
inline void BGEZL() { branchLikely<ZeroBranchFields, BGEZ>("bgezl %s,%4llx"); }

// Branches on the floating-point condition bit.

/// The body of their handlers. There is only condition code 0: others pause, with PC on the branch.
template <bool taken, DelaySlot whenNotTaken = DelaySlot::Executed>
inline void branchOnCondition(const char* format, const char* message) {
    traceBranchIfOn<FpuBranchFields>(format);
    const auto fields = FpuBranchFields::from(MipsCpu.opcode);
    if (fields.ccb != 0) [[unlikely]] {
        printDiagnostic("%s", message);
        MipsCpu.pause = 1;
        return;
    }
    branchIf<whenNotTaken>(conditionBit() == taken, branchTarget(MipsCpu.PC, fields.offset));
}

inline void BC1F() { branchOnCondition<false>("bc1f %x,%4llx", "BC1F : cc not implemented\n"); }
inline void BC1T() { branchOnCondition<true>("bc1t %x,%4llx", "BC1T : cc not implemented\n"); }
inline void BC1TL() {
    branchOnCondition<true, DelaySlot::Skipped>("bc1tl %x,%4llx", "BC1TL : cc not implemented\n");
}

// Jumps.

/// The target of J and JAL: word number `instr_index` of memory, in the low 32 bits of PC.
constexpr u64 jumpTarget(u64 pc, JumpFields f) { return (pc & ~u64{0xFFFFFFFF}) | u64{f.instr_index} * 4; }

/// Where JAL leaves its return address.
inline constexpr Gpr returnAddress = Gpr::numbered(REG_RA);

/// Writes the return address of a jump at `pc`, which is behind the delay slot.
inline void link(Gpr reg, u64 pc) { setDoubleword(reg, pc + 8); }

inline void jump(const char* format) {
    const auto fields = JumpFields::from(MipsCpu.opcode);
    const u64 target = jumpTarget(MipsCpu.PC, fields);
    if (tracing()) [[unlikely]] {
        traceOperands(format, fields, target);
    }
    jumpTo(target);
}

inline void J() { jump("j %8llx"); }
inline void JAL() {
    link(returnAddress, MipsCpu.PC);
    jump("jal %8llx");
}

inline void JR() {
    const auto fields = RegisterFields::from(MipsCpu.opcode);
    if (tracing()) [[unlikely]] {
        traceJumpRegister("jr %s with %s=%8llx", fields);
    }
    jumpTo(gpr(fields.rs));
}

/// Links before anything else, so that with rd = rs the trace line shows the return address.
inline void JALR() {
    const auto fields = RegisterFields::from(MipsCpu.opcode);
    const u64 target = gpr(fields.rs);
    link(fields.rd, MipsCpu.PC);
    if (tracing()) [[unlikely]] {
        traceJumpAndLinkRegister("jalr %s,%s with %s=%8llx", fields);
    }
    jumpTo(target);
}

}  // namespace tarn::r5900
