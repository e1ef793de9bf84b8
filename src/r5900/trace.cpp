// The text of the instruction trace.
#include "r5900/trace.h"

#include "base/diagnostics.h"
#include "machine/machine.h"
#include "r5900/branch.h"
#include "r5900/fields.h"
#include "r5900/interpreter.h"
#include "r5900/register_names.h"
#include "r5900/registers.h"

#include <cstdarg>
#include <cstdio>

namespace tarn::r5900 {

namespace {

const char* gprName(Gpr reg) { return debug_r5900_reg[reg.number()]; }
const char* fprName(u8 number) { return debug_r5900_cop1_reg[number]; }

/// A raw 16-bit field as the %llx of the formats takes it.
u64 raw(u16 immediate) { return immediate; }

template <typename Fields>
u64 targetOf(const Fields& fields) {
    return branchTarget(MipsCpu.PC, fields.offset);
}

}  // namespace

void traceText(const char* format, ...) {
    const auto length = std::snprintf(debugTempText.data(), debugTempText.size(), "%8.8llx: ", MipsCpu.PC);
    const auto used = static_cast<std::size_t>(length);
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(debugTempText.data() + used, debugTempText.size() - used, format, arguments);
    va_end(arguments);
}

void showTraceLine() { PrintToOpcodeOutput(debugTempText.data()); }

void showStep() {
    showTraceLine();
    MipsCpuPrintRegtoOutput();
}

void traceRtRsImmediate(const char* format, u32 word) {
    const auto f = ImmediateFields::from(word);
    traceText(format, gprName(f.rt), gprName(f.rs), raw(f.imm));
}

void traceRtImmediate(const char* format, u32 word) {
    const auto f = ImmediateFields::from(word);
    traceText(format, gprName(f.rt), raw(f.imm));
}

void traceRdRsRt(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rs), gprName(f.rt));
}

void traceRdRtRs(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rt), gprName(f.rs));
}

void traceRsRt(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rs), gprName(f.rt));
}

void traceRdOnly(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd));
}

void traceRsOnly(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rs));
}

void traceRdRs(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rs));
}

void traceRdRt(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rt));
}

void traceRsImmediate(const char* format, u32 word) {
    const auto f = ImmediateFields::from(word);
    traceText(format, gprName(f.rs), raw(f.imm));
}

void traceFdFt(const char* format, u32 word) {
    const auto f = FpuFields::from(word);
    traceText(format, fprName(f.fd), fprName(f.ft));
}

void traceFsFt(const char* format, u32 word) {
    const auto f = FpuFields::from(word);
    traceText(format, fprName(f.fs), fprName(f.ft));
}

void traceRdRtSa(const char* format, u32 word) {
    const auto f = ShiftFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rt), f.sa);
}

void traceRtOffsetBase(const char* format, u32 word) {
    const auto f = MemoryFields::from(word);
    traceText(format, gprName(f.rt), raw(f.offset), gprName(f.base));
}

void traceFtOffsetBase(const char* format, u32 word) {
    const auto f = FpuMemoryFields::from(word);
    traceText(format, f.ft, raw(f.offset), gprName(f.base));
}

void traceFtImage(const char* format, u32 word) {
    const auto f = FpuMemoryFields::from(word);
    traceText(format, fprName(f.ft), MipsCpu.FPR128[f.ft].low);
}

void traceRsRtTarget(const char* format, u32 word) {
    const auto f = BranchFields::from(word);
    traceText(format, gprName(f.rs), gprName(f.rt), targetOf(f));
}

void traceRsTarget(const char* format, u32 word) {
    const auto f = ZeroBranchFields::from(word);
    traceText(format, gprName(f.rs), targetOf(f));
}

void traceCcTarget(const char* format, u32 word) {
    const auto f = FpuBranchFields::from(word);
    traceText(format, f.ccb, targetOf(f));
}

void traceJumpTarget(const char* format, u32 word) {
    const auto f = JumpFields::from(word);
    traceText(format, J(f, MipsCpu.PC));
}

void traceRsRsValue(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rs), gprName(f.rs), gpr(f.rs));
}

void traceRdRsRsValue(const char* format, u32 word) {
    const auto f = RegisterFields::from(word);
    traceText(format, gprName(f.rd), gprName(f.rs), gprName(f.rs), gpr(f.rs));
}

void traceRtRdSel(const char* format, u32 word) {
    const auto f = Cop0Fields::from(word);
    traceText(format, gprName(f.rt), debug_r5900_cop0_reg[f.rd], f.sel);
}

void traceFdFsFt(const char* format, u32 word) {
    const auto f = FpuFields::from(word);
    traceText(format, fprName(f.fd), fprName(f.fs), fprName(f.ft));
}

void traceFdFs(const char* format, u32 word) {
    const auto f = FpuFields::from(word);
    traceText(format, fprName(f.fd), fprName(f.fs));
}

void traceRtFs(const char* format, u32 word) {
    const auto f = FpuMoveFields::from(word);
    traceText(format, gprName(f.rt), fprName(f.fs));
}

void traceCcFsFt(const char* format, u32 word) {
    const auto f = FpuCompareFields::from(word);
    traceText(format, f.cc, fprName(f.fs), fprName(f.ft));
}

}  // namespace tarn::r5900
