// Integer instructions that compute a register from registers and immediates: arithmetic, logic, comparisons,
// conditional moves and shifts.
#pragma once

#include "base/diagnostics.h"
#include "r5900/fields.h"
#include "r5900/gpr.h"

namespace tarn::r5900 {

// Immediate operands: rt from rs and imm.

/// There is no overflow check: ADDI is ADDIU.
inline void ADDIU(ImmediateFields f) { setWord(f.rt, gpr(f.rs) + signExtend16(f.imm)); }
inline void ADDI(ImmediateFields f) { ADDIU(f); }

inline void SLTI(ImmediateFields f) {
    setDoubleword(f.rt, static_cast<s64>(gpr(f.rs)) < static_cast<s16>(f.imm));
}

inline void SLTIU(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) < signExtend16(f.imm)); }

inline void ANDI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) & f.imm); }

inline void ORI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) | f.imm); }

inline void XORI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) ^ f.imm); }

inline void LUI(ImmediateFields f) { setWord(f.rt, u64{f.imm} << 16); }

inline void DADDIU(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) + signExtend16(f.imm)); }

// Three registers: rd from rs and rt.

/// Writes the exact sum or difference of two words. On overflow prints a message and leaves rd unchanged.
inline void setCheckedWord(Gpr rd, s64 exact, const char* message) {
    if (exact != signedWord(static_cast<u64>(exact))) {
        printDiagnostic("%s", message);
        return;
    }
    setWord(rd, static_cast<u64>(exact));
}

inline void ADD(RegisterFields f) {
    setCheckedWord(f.rd, s64{signedWord(gpr(f.rs))} + signedWord(gpr(f.rt)), "add Integer Overflow\n");
}

inline void ADDU(RegisterFields f) { setWord(f.rd, gpr(f.rs) + gpr(f.rt)); }

inline void SUB(RegisterFields f) {
    setCheckedWord(f.rd, s64{signedWord(gpr(f.rs))} - signedWord(gpr(f.rt)), "sub Integer Overflow\n");
}

inline void SUBU(RegisterFields f) { setWord(f.rd, gpr(f.rs) - gpr(f.rt)); }

inline void AND(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) & gpr(f.rt)); }

inline void OR(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) | gpr(f.rt)); }

inline void XOR(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) ^ gpr(f.rt)); }

/// Intentional: compares the low words only, unlike the other three comparisons.
inline void SLT(RegisterFields f) { setDoubleword(f.rd, signedWord(gpr(f.rs)) < signedWord(gpr(f.rt))); }

inline void SLTU(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) < gpr(f.rt)); }

inline void DADDU(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) + gpr(f.rt)); }

/// Reports a signed overflow, and writes the difference anyway.
inline void DSUBU(RegisterFields f) {
    const u64 minuend = gpr(f.rs);
    const u64 subtrahend = gpr(f.rt);
    const u64 difference = minuend - subtrahend;
    if (((minuend ^ subtrahend) & (minuend ^ difference)) >> 63 != 0) {
        printDiagnostic("dsubu Integer Overflow\n");
    }
    setDoubleword(f.rd, difference);
}

inline void MOVZ(RegisterFields f) {
    if (gpr(f.rt) == 0) {
        setDoubleword(f.rd, gpr(f.rs));
    }
}

inline void MOVN(RegisterFields f) {
    if (gpr(f.rt) != 0) {
        setDoubleword(f.rd, gpr(f.rs));
    }
}

// Shifts: rd from rt, by sa or by the low five bits of rs.

constexpr u64 shiftWordLeft(u64 value, unsigned amount) { return value << amount; }

constexpr u64 shiftWordRight(u64 value, unsigned amount) { return static_cast<u32>(value) >> amount; }

/// Shifts in copies of bit 31 if it is set. Intentional: if it is clear, bits 32 and up shift in.
constexpr u64 shiftWordRightArithmetic(u64 value, unsigned amount) {
    return (bit(value, 31) != 0 ? signExtend32(value) : value) >> amount;
}

inline unsigned shiftAmount(RegisterFields f) { return bits(gpr(f.rs), 0, 5); }

inline void SLL(ShiftFields f) { setWord(f.rd, shiftWordLeft(gpr(f.rt), f.sa)); }

inline void SRL(ShiftFields f) { setWord(f.rd, shiftWordRight(gpr(f.rt), f.sa)); }

inline void SRA(ShiftFields f) { setWord(f.rd, shiftWordRightArithmetic(gpr(f.rt), f.sa)); }

inline void SLLV(RegisterFields f) { setWord(f.rd, shiftWordLeft(gpr(f.rt), shiftAmount(f))); }

inline void SLRV(RegisterFields f) { setWord(f.rd, shiftWordRight(gpr(f.rt), shiftAmount(f))); }

inline void SRAV(RegisterFields f) { setWord(f.rd, shiftWordRightArithmetic(gpr(f.rt), shiftAmount(f))); }

inline void DSLL(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) << f.sa); }

inline void DSRL(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) >> f.sa); }

inline void DSLL32(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) << (f.sa + 32)); }

inline void DSRL32(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) >> (f.sa + 32)); }

inline void DSRA32(ShiftFields f) {
    setDoubleword(f.rd, static_cast<u64>(static_cast<s64>(gpr(f.rt)) >> (f.sa + 32)));
}

}  // namespace tarn::r5900
