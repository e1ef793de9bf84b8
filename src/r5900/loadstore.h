// Loads and stores through the memory map. An access that fails there pauses the CPU, and the instruction
// completes with the old value of its destination.
#pragma once

#include "memory/memory.h"
#include "r5900/fields.h"
#include "r5900/fpu_registers.h"
#include "r5900/gpr.h"

namespace tarn::r5900 {

/// The guest address of an access.
template <typename Fields>
inline u32 addressOf(Fields f, const MipsCpuRecord& cpu = MipsCpu) {
    return guestAddress(gpr(cpu, f.base), static_cast<s16>(f.offset));
}

// Loads.

/// Reads at base + offset. The destination may be the base: the address is computed first.
template <typename Fields>
inline void readAt(GuestValue& destination, Width width, Fields f) {
    MipsMemoryRead(&destination, width, gpr(f.base), static_cast<s16>(f.offset));
}

/// Reads at base + offset into rt, zero-extended.
inline void loadRegister(Width width, MemoryFields f) { readAt(wholeGpr(f.rt), width, f); }

/// The word at base + offset, or 0 when it could not be read.
template <typename Fields>
inline u64 loadedWord(Fields f) {
    GuestValue word;
    readAt(word, Width::Word, f);
    return word.low;
}

inline void LB(MemoryFields f) {
    loadRegister(Width::Byte, f);
    setDoubleword(f.rt, signExtend8(gpr(f.rt)));
}

inline void LBU(MemoryFields f) { loadRegister(Width::Byte, f); }

inline void LH(MemoryFields f) {
    loadRegister(Width::Halfword, f);
    setDoubleword(f.rt, signExtend16(gpr(f.rt)));
}

inline void LHU(MemoryFields f) { loadRegister(Width::Halfword, f); }

inline void LW(MemoryFields f) {
    loadRegister(Width::Word, f);
    setWord(f.rt, gpr(f.rt));
}

inline void LWU(MemoryFields f) { loadRegister(Width::Word, f); }

inline void LD(MemoryFields f) { loadRegister(Width::Doubleword, f); }

inline void LQ(MemoryFields f) { loadRegister(Width::Quadword, f); }

// Intentional: the left and right forms ignore the alignment of the address. The idiom for an unaligned
// doubleword, LDL at offset 7 and LDR at 0, still works, because LDR reads at any address.

inline void LDL(MemoryFields f) { loadRegister(Width::HighDoubleword, f); }

inline void LDR(MemoryFields f) { LD(f); }

inline void LWL(MemoryFields f) {
    const u64 word = loadedWord(f);
    setWord(f.rt, (gpr(f.rt) & 0x0000FFFF) | (word & 0xFFFF0000));
}

inline void LWR(MemoryFields f) {
    const u64 word = loadedWord(f);
    setWord(f.rt, (gpr(f.rt) & 0xFFFF0000) | (word & 0x0000FFFF));
}

inline void LWC1(FpuMemoryFields f) { setFromImage(f.ft, loadedWord(f)); }

// Stores.

/// Writes at base + offset.
template <typename Fields>
inline void writeAt(const GuestValue& value, Width width, Fields f) {
    MipsMemoryWrite(value, width, gpr(f.base), static_cast<s16>(f.offset));
}

inline void storeRegister(Width width, MemoryFields f) { writeAt(wholeGpr(f.rt), width, f); }

inline void SB(MemoryFields f) { storeRegister(Width::Byte, f); }

inline void SH(MemoryFields f) { storeRegister(Width::Halfword, f); }

inline void SW(MemoryFields f) { storeRegister(Width::Word, f); }

inline void SD(MemoryFields f) { storeRegister(Width::Doubleword, f); }

inline void SQ(MemoryFields f) { storeRegister(Width::Quadword, f); }

inline void SDL(MemoryFields f) { storeRegister(Width::HighDoubleword, f); }

inline void SDR(MemoryFields f) { SD(f); }

/// Intentional: stores a whole word whose other half is zero, like SWR.
inline void SWL(MemoryFields f) { writeAt({gpr(f.rt) & 0xFFFF0000, 0}, Width::Word, f); }

inline void SWR(MemoryFields f) { writeAt({gpr(f.rt) & 0x0000FFFF, 0}, Width::Word, f); }

/// Stores the bit image, not the value.
inline void SWC1(FpuMemoryFields f) { writeAt(MipsCpu.FPR128[f.ft], Width::Word, f); }

}  // namespace tarn::r5900
