// Owns the text of the instruction trace.
#include "r5900/trace.h"

#include "base/diagnostics.h"
#include "machine/machine.h"
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

void traceOperands(const char* format, ImmediateFields f) {
    traceText(format, gprName(f.rt), gprName(f.rs), raw(f.imm));
}

void traceUpperImmediate(const char* format, ImmediateFields f) {
    traceText(format, gprName(f.rt), raw(f.imm));
}

void traceOperands(const char* format, RegisterFields f) {
    traceText(format, gprName(f.rd), gprName(f.rs), gprName(f.rt));
}

void traceSwapped(const char* format, RegisterFields f) {
    traceText(format, gprName(f.rd), gprName(f.rt), gprName(f.rs));
}

void traceSources(const char* format, RegisterFields f) { traceText(format, gprName(f.rs), gprName(f.rt)); }

void traceDestination(const char* format, RegisterFields f) { traceText(format, gprName(f.rd)); }

void traceOperands(const char* format, ShiftFields f) {
    traceText(format, gprName(f.rd), gprName(f.rt), f.sa);
}

void traceOperands(const char* format, MemoryFields f) {
    traceText(format, gprName(f.rt), raw(f.offset), gprName(f.base));
}

void traceOperands(const char* format, FpuMemoryFields f) {
    traceText(format, f.ft, raw(f.offset), gprName(f.base));
}

void traceImage(const char* format, FpuMemoryFields f) {
    traceText(format, fprName(f.ft), MipsCpu.FPR128[f.ft].low);
}

void traceOperands(const char* format, BranchFields f, u64 target) {
    traceText(format, gprName(f.rs), gprName(f.rt), target);
}

void traceOperands(const char* format, ZeroBranchFields f, u64 target) {
    traceText(format, gprName(f.rs), target);
}

void traceOperands(const char* format, FpuBranchFields f, u64 target) { traceText(format, f.ccb, target); }

void traceOperands(const char* format, JumpFields, u64 target) { traceText(format, target); }

void traceJumpRegister(const char* format, RegisterFields f) {
    traceText(format, gprName(f.rs), gprName(f.rs), gpr(f.rs));
}

void traceJumpAndLinkRegister(const char* format, RegisterFields f) {
    traceText(format, gprName(f.rd), gprName(f.rs), gprName(f.rs), gpr(f.rs));
}

void traceOperands(const char* format, Cop0Fields f) {
    traceText(format, gprName(f.rt), debug_r5900_cop0_reg[f.rd], f.sel);
}

void traceOperands(const char* format, FpuFields f) {
    traceText(format, fprName(f.fd), fprName(f.fs), fprName(f.ft));
}

void traceUnary(const char* format, FpuFields f) { traceText(format, fprName(f.fd), fprName(f.fs)); }

void traceOperands(const char* format, FpuMoveFields f) { traceText(format, gprName(f.rt), fprName(f.fs)); }

void traceOperands(const char* format, FpuCompareFields f) {
    traceText(format, f.cc, fprName(f.fs), fprName(f.ft));
}

}  // namespace tarn::r5900
