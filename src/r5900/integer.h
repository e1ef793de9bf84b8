// Owns the integer instructions that compute a register from registers and immediates: arithmetic, logic,
// comparisons, conditional moves and shifts.
#pragma once

#include "base/diagnostics.h"
#include "r5900/handler.h"
#include "r5900/registers.h"

#include <cstdio>

namespace tarn::r5900 {

// Immediate operands: rt from rs and imm.

/// There is no overflow check: ADDI is ADDIU.
inline void ADDIU(ImmediateFields f) { setWord(f.rt, gpr(f.rs) + signExtend16(f.imm)); }
inline void ADDIU() { straight<ImmediateFields, ADDIU>("addiu %s,%s,%4llx"); }
inline void ADDI(ImmediateFields f) { ADDIU(f); }
inline void ADDI() { straight<ImmediateFields, ADDI>("addi %s,%s,%4llx"); }

inline void SLTI(ImmediateFields f) {
    setDoubleword(f.rt, static_cast<s64>(gpr(f.rs)) < static_cast<s16>(f.imm));
}
inline void SLTI() { straight<ImmediateFields, SLTI>("slti %s,%s,%4llx"); }

inline void SLTIU(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) < signExtend16(f.imm)); }
inline void SLTIU() { straight<ImmediateFields, SLTIU>("sltiu %s,%s,%8llx"); }

inline void ANDI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) & f.imm); }
inline void ANDI() { straight<ImmediateFields, ANDI>("andi %s,%s,%4llx"); }

inline void ORI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) | f.imm); }
inline void ORI() { straight<ImmediateFields, ORI>("ori\t%s,%s,%4llx"); }

inline void XORI(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) ^ f.imm); }
inline void XORI() { straight<ImmediateFields, XORI>("xori %s,%s,%4llx"); }

inline void LUI(ImmediateFields f) { setWord(f.rt, u64{f.imm} << 16); }
inline void LUI() { straight<ImmediateFields, LUI, traceUpperImmediate>("lui %s,%4llx"); }

inline void DADDIU(ImmediateFields f) { setDoubleword(f.rt, gpr(f.rs) + signExtend16(f.imm)); }
inline void DADDIU() { straight<ImmediateFields, DADDIU>("daddiu %s,%s,%4llx"); }

// Three registers: rd from rs and rt.

/// Writes the exact sum or difference of two words, or says that it overflowed and leaves rd as it is.
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
inline void ADD() { straight<RegisterFields, ADD, traceSwapped>("add\t%s,%s,%s"); }

inline void ADDU(RegisterFields f) { setWord(f.rd, gpr(f.rs) + gpr(f.rt)); }
inline void ADDU() { straight<RegisterFields, ADDU, traceSwapped>("addu %s,%s,%s"); }

inline void SUB(RegisterFields f) {
    setCheckedWord(f.rd, s64{signedWord(gpr(f.rs))} - signedWord(gpr(f.rt)), "sub Integer Overflow\n");
}
inline void SUB() { straight<RegisterFields, SUB>("sub\t%s,%s,%s"); }

inline void SUBU(RegisterFields f) { setWord(f.rd, gpr(f.rs) - gpr(f.rt)); }
inline void SUBU() { straight<RegisterFields, SUBU>("subu %s,%s,%s"); }

inline void AND(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) & gpr(f.rt)); }
inline void AND() { straight<RegisterFields, AND>("and\t%s,%s,%s"); }

inline void OR(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) | gpr(f.rt)); }
inline void OR() { straight<RegisterFields, OR>("or %s,%s,%s"); }

inline void XOR(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) ^ gpr(f.rt)); }
inline void XOR() { straight<RegisterFields, XOR>("xor %s,%s,%s"); }

/// Compares the low words only, unlike the other three comparisons: meant.
inline void SLT(RegisterFields f) { setDoubleword(f.rd, signedWord(gpr(f.rs)) < signedWord(gpr(f.rt))); }
inline void SLT() { straight<RegisterFields, SLT>("slt %s,%s,%s"); }

inline void SLTU(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) < gpr(f.rt)); }
inline void SLTU() { straight<RegisterFields, SLTU>("sltu %s,%s,%s"); }

inline void DADDU(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) + gpr(f.rt)); }
inline void DADDU() { straight<RegisterFields, DADDU>("daddu %s,%s,%s"); }

/// Reports a signed overflow, and writes the difference all the same.
inline void DSUBU(RegisterFields f) {
    const u64 minuend = gpr(f.rs);
    const u64 subtrahend = gpr(f.rt);
    const u64 difference = minuend - subtrahend;
    if (((minuend ^ subtrahend) & (minuend ^ difference)) >> 63 != 0) {
        printDiagnostic("%s", "dsubu Integer Overflow\n");
    }
    setDoubleword(f.rd, difference);
}
inline void DSUBU() { straight<RegisterFields, DSUBU>("dsubu %s,%s,%s"); }

inline void MOVZ(RegisterFields f) {
    if (gpr(f.rt) == 0) {
        setDoubleword(f.rd, gpr(f.rs));
    }
}
inline void MOVZ() { straight<RegisterFields, MOVZ>("movz %s,%s,%s"); }

inline void MOVN(RegisterFields f) {
    if (gpr(f.rt) != 0) {
        setDoubleword(f.rd, gpr(f.rs));
    }
}
inline void MOVN() { straight<RegisterFields, MOVN>("movn %s,%s,%s "); }

// Shifts: rd from rt, by sa or by the low five bits of rs.

constexpr u64 shiftWordLeft(u64 value, unsigned amount) { return value << amount; }

constexpr u64 shiftWordRight(u64 value, unsigned amount) { return static_cast<u32>(value) >> amount; }

/// Shifts copies of a set sign bit in. With the sign bit clear, what shifts in is bits 32 and up: meant.
constexpr u64 shiftWordRightArithmetic(u64 value, unsigned amount) {
    return (bit(value, 31) != 0 ? signExtend32(value) : value) >> amount;
}

inline unsigned shiftAmount(RegisterFields f) { return bits(gpr(f.rs), 0, 5); }

inline void SLL(ShiftFields f) { setWord(f.rd, shiftWordLeft(gpr(f.rt), f.sa)); }
inline void SLL() { straight<ShiftFields, SLL>("sll %s,%s,%d"); }

inline void SRL(ShiftFields f) { setWord(f.rd, shiftWordRight(gpr(f.rt), f.sa)); }
inline void SRL() { straight<ShiftFields, SRL>("srl %s,%s,%d"); }

inline void SRA(ShiftFields f) { setWord(f.rd, shiftWordRightArithmetic(gpr(f.rt), f.sa)); }
inline void SRA() { straight<ShiftFields, SRA>("sra %s,%s,%d"); }

inline void SLLV(RegisterFields f) { setWord(f.rd, shiftWordLeft(gpr(f.rt), shiftAmount(f))); }
inline void SLLV() { straight<RegisterFields, SLLV, traceSwapped>("sllv %s,%s,%s"); }

inline void SLRV(RegisterFields f) { setWord(f.rd, shiftWordRight(gpr(f.rt), shiftAmount(f))); }
inline void SLRV() { straight<RegisterFields, SLRV, traceSwapped>("srlv %s,%s,%s"); }

inline void SRAV(RegisterFields f) { setWord(f.rd, shiftWordRightArithmetic(gpr(f.rt), shiftAmount(f))); }
inline void SRAV() { straight<RegisterFields, SRAV, traceSwapped>("srav %s,%s,%s"); }

inline void DSLL(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) << f.sa); }
inline void DSLL() { straight<ShiftFields, DSLL>("dsll %s,%s,%4x"); }

inline void DSRL(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) >> f.sa); }
inline void DSRL() { straight<ShiftFields, DSRL>("dsrl %s,%s,%4x"); }

inline void DSLL32(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) << (f.sa + 32)); }
inline void DSLL32() { straight<ShiftFields, DSLL32>("dsll32 %s,%s,%4x"); }

inline void DSRL32(ShiftFields f) { setDoubleword(f.rd, gpr(f.rt) >> (f.sa + 32)); }
inline void DSRL32() { straight<ShiftFields, DSRL32>("dsrl32 %s,%s,%4x"); }

inline void DSRA32(ShiftFields f) {
    setDoubleword(f.rd, static_cast<u64>(static_cast<s64>(gpr(f.rt)) >> (f.sa + 32)));
}
inline void DSRA32() { straight<ShiftFields, DSRA32>("dsra32 %s,%s,%4x"); }

}  // namespace tarn::r5900
