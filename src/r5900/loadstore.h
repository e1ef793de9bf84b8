// Owns the loads and stores. Each goes through the memory map; one that fails there has paused the CPU, and
// the instruction still completes with whatever its destination holds.
#pragma once

#include "memory/memory.h"
#include "r5900/fpu_registers.h"
#include "r5900/handler.h"
#include "r5900/registers.h"

namespace tarn::r5900 {

// Loads.

/// Reads at base + offset. A load may use its destination as base: the address is formed first.
template <class Fields>
inline void load(GuestValue& destination, Width width, Fields f) {
    MipsMemoryRead(&destination, width, gpr(f.base), static_cast<s16>(f.offset));
}

/// Reads at base + offset into rt, zero-extended.
inline void loadRegister(Width width, MemoryFields f) { load(wholeGpr(f.rt), width, f); }

/// The word at base + offset, or 0 when it could not be read.
template <class Fields>
inline u64 loadedWord(Fields f) {
    GuestValue word;
    load(word, Width::Word, f);
    return word.low;
}

inline void LB(MemoryFields f) {
    loadRegister(Width::Byte, f);
    setDoubleword(f.rt, signExtend8(gpr(f.rt)));
}
inline void LB() { straight<MemoryFields, LB>("lb %s,%4llx(%s)"); }

inline void LBU(MemoryFields f) { loadRegister(Width::Byte, f); }
inline void LBU() { straight<MemoryFields, LBU>("lbu %s,%4llx(%s)"); }

inline void LH(MemoryFields f) {
    loadRegister(Width::Halfword, f);
    setDoubleword(f.rt, signExtend16(gpr(f.rt)));
}
inline void LH() { straight<MemoryFields, LH>("lh %s,%4llx(%s)"); }

inline void LHU(MemoryFields f) { loadRegister(Width::Halfword, f); }
inline void LHU() { straight<MemoryFields, LHU>("lhu %s,%4llx(%s)"); }

inline void LW(MemoryFields f) {
    loadRegister(Width::Word, f);
    setWord(f.rt, gpr(f.rt));
}
inline void LW() { straight<MemoryFields, LW>("lw %s,%4llx(%s)"); }

inline void LWU(MemoryFields f) { loadRegister(Width::Word, f); }
inline void LWU() { straight<MemoryFields, LWU>("lwu %s,%4llx(%s)"); }

inline void LD(MemoryFields f) { loadRegister(Width::Doubleword, f); }
inline void LD() { straight<MemoryFields, LD>("ld %s,%4llx(%s)"); }

inline void LQ(MemoryFields f) { loadRegister(Width::Quadword, f); }
inline void LQ() { straight<MemoryFields, LQ>("lq %s,%4llx(%s)"); }

// The left and right forms do not look at the alignment of the address: meant. The idiom for an unaligned
// doubleword, LDL at 7 and LDR at 0, works all the same, because LDR reads at any address.

inline void LDL(MemoryFields f) { loadRegister(Width::HighDoubleword, f); }
inline void LDL() { straight<MemoryFields, LDL>("ldl %s,%4llx(%s)"); }

inline void LDR(MemoryFields f) { LD(f); }
inline void LDR() { straight<MemoryFields, LDR>("ldr %s,%4llx(%s)"); }

inline void LWL(MemoryFields f) {
    const u64 word = loadedWord(f);
    setWord(f.rt, (gpr(f.rt) & 0x0000FFFF) | (word & 0xFFFF0000));
}
inline void LWL() { straight<MemoryFields, LWL>("lwl %s,%4llx(%s)"); }

inline void LWR(MemoryFields f) {
    const u64 word = loadedWord(f);
    setWord(f.rt, (gpr(f.rt) & 0xFFFF0000) | (word & 0x0000FFFF));
}
inline void LWR() { straight<MemoryFields, LWR>("lwr %s,%4llx(%s)"); }

inline void LWC1(FpuMemoryFields f) { setFromImage(f.ft, loadedWord(f)); }
inline void LWC1() { straight<FpuMemoryFields, LWC1, traceImage>("%s = %8.8llx "); }

// Stores.

/// Writes at base + offset.
template <class Fields>
inline void store(const GuestValue& value, Width width, Fields f) {
    MipsMemoryWrite(value, width, gpr(f.base), static_cast<s16>(f.offset));
}

inline void storeRegister(Width width, MemoryFields f) { store(wholeGpr(f.rt), width, f); }

inline void SB(MemoryFields f) { storeRegister(Width::Byte, f); }
inline void SB() { straight<MemoryFields, SB>("sb %s,%4llx(%s)"); }

inline void SH(MemoryFields f) { storeRegister(Width::Halfword, f); }
inline void SH() { straight<MemoryFields, SH>("sh %s,%4llx(%s)"); }

inline void SW(MemoryFields f) { storeRegister(Width::Word, f); }
inline void SW() { straight<MemoryFields, SW>("sw %s,%4llx(%s)"); }

inline void SD(MemoryFields f) { storeRegister(Width::Doubleword, f); }
inline void SD() { straight<MemoryFields, SD>("sd %s,%4llx(%s)"); }

inline void SQ(MemoryFields f) { storeRegister(Width::Quadword, f); }
inline void SQ() { straight<MemoryFields, SQ>("sq %s,%4llx(%s)"); }

inline void SDL(MemoryFields f) { storeRegister(Width::HighDoubleword, f); }
inline void SDL() { straight<MemoryFields, SDL>("sdl %s,%4llx(%s)"); }

inline void SDR(MemoryFields f) { SD(f); }
inline void SDR() { straight<MemoryFields, SDR>("sdr %s,%4llx(%s)"); }

/// Stores a whole word, whose other half is zero: meant, and so with SWR.
inline void SWL(MemoryFields f) { store({gpr(f.rt) & 0xFFFF0000, 0}, Width::Word, f); }
inline void SWL() { straight<MemoryFields, SWL>("swl %s,%4llx(%s)"); }

inline void SWR(MemoryFields f) { store({gpr(f.rt) & 0x0000FFFF, 0}, Width::Word, f); }
inline void SWR() { straight<MemoryFields, SWR>("swr %s,%4llx(%s)"); }

/// Stores the bit image, not the value.
inline void SWC1(FpuMemoryFields f) { store(MipsCpu.FPR128[f.ft], Width::Word, f); }
inline void SWC1() { straight<FpuMemoryFields, SWC1>("sdwc1 fp%d,%4llx(%s)"); }

}  // namespace tarn::r5900
