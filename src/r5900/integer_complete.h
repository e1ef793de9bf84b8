// Integer instructions that only the complete processor has or that differ there, and the conditions under
// which it stops: overflows and traps.
#pragma once

#include "r5900/integer.h"

namespace tarn::r5900 {

inline void NOR(RegisterFields f) { setDoubleword(f.rd, ~(gpr(f.rs) | gpr(f.rt))); }

inline void SLT_complete(RegisterFields f) {
    setDoubleword(f.rd, static_cast<s64>(gpr(f.rs)) < static_cast<s64>(gpr(f.rt)));
}

inline void DSUBU_complete(RegisterFields f) { setDoubleword(f.rd, gpr(f.rs) - gpr(f.rt)); }

// Overflow conditions. Without overflow ADD is ADDU, and so on.

constexpr bool exceedsWord(s64 exact) { return exact != signedWord(static_cast<u64>(exact)); }

inline bool overflowOfADD(RegisterFields f) {
    return exceedsWord(s64{signedWord(gpr(f.rs))} + signedWord(gpr(f.rt)));
}
inline bool overflowOfADDI(ImmediateFields f) {
    return exceedsWord(s64{signedWord(gpr(f.rs))} + static_cast<s16>(f.imm));
}
inline bool overflowOfSUB(RegisterFields f) {
    return exceedsWord(s64{signedWord(gpr(f.rs))} - signedWord(gpr(f.rt)));
}
inline bool overflowOfDADD(RegisterFields f) {
    s64 sum;
    return __builtin_add_overflow(static_cast<s64>(gpr(f.rs)), static_cast<s64>(gpr(f.rt)), &sum);
}
inline bool overflowOfDADDI(ImmediateFields f) {
    s64 sum;
    return __builtin_add_overflow(static_cast<s64>(gpr(f.rs)), static_cast<s16>(f.imm), &sum);
}
inline bool overflowOfDSUB(RegisterFields f) {
    s64 difference;
    return __builtin_sub_overflow(static_cast<s64>(gpr(f.rs)), static_cast<s64>(gpr(f.rt)), &difference);
}

// Trap conditions.

inline s64 signedGpr(Gpr reg) { return static_cast<s64>(gpr(reg)); }

inline bool TEQ(RegisterFields f) { return gpr(f.rs) == gpr(f.rt); }
inline bool TNE(RegisterFields f) { return gpr(f.rs) != gpr(f.rt); }
inline bool TGE(RegisterFields f) { return signedGpr(f.rs) >= signedGpr(f.rt); }
inline bool TGEU(RegisterFields f) { return gpr(f.rs) >= gpr(f.rt); }
inline bool TLT(RegisterFields f) { return signedGpr(f.rs) < signedGpr(f.rt); }
inline bool TLTU(RegisterFields f) { return gpr(f.rs) < gpr(f.rt); }

inline bool TEQI(ImmediateFields f) { return gpr(f.rs) == signExtend16(f.imm); }
inline bool TNEI(ImmediateFields f) { return gpr(f.rs) != signExtend16(f.imm); }
inline bool TGEI(ImmediateFields f) { return signedGpr(f.rs) >= static_cast<s16>(f.imm); }
inline bool TGEIU(ImmediateFields f) { return gpr(f.rs) >= signExtend16(f.imm); }
inline bool TLTI(ImmediateFields f) { return signedGpr(f.rs) < static_cast<s16>(f.imm); }
inline bool TLTIU(ImmediateFields f) { return gpr(f.rs) < signExtend16(f.imm); }

// Shifts.

/// Shifts in copies of bit 31 and ignores the upper word.
constexpr u64 shiftWordRightArithmetic_complete(u64 value, unsigned amount) {
    return signExtend32(value) >> amount;
}
constexpr u64 shiftRightArithmetic(u64 value, unsigned amount) {
    return static_cast<u64>(static_cast<s64>(value) >> amount);
}

inline unsigned wideShiftAmount(RegisterFields f) { return bits(gpr(f.rs), 0, 6); }

inline void SRA_complete(ShiftFields f) { setWord(f.rd, shiftWordRightArithmetic_complete(gpr(f.rt), f.sa)); }
inline void SRAV_complete(RegisterFields f) {
    setWord(f.rd, shiftWordRightArithmetic_complete(gpr(f.rt), shiftAmount(f)));
}
inline void DSRA(ShiftFields f) { setDoubleword(f.rd, shiftRightArithmetic(gpr(f.rt), f.sa)); }
inline void DSLLV(RegisterFields f) { setDoubleword(f.rd, gpr(f.rt) << wideShiftAmount(f)); }
inline void DSRLV(RegisterFields f) { setDoubleword(f.rd, gpr(f.rt) >> wideShiftAmount(f)); }
inline void DSRAV(RegisterFields f) {
    setDoubleword(f.rd, shiftRightArithmetic(gpr(f.rt), wideShiftAmount(f)));
}

}  // namespace tarn::r5900
