// Owns what little there is of system control: coprocessor 0, system calls, and the two no-ops with a name.
#pragma once

#include "kernel/syscall_table.h"
#include "r5900/handler.h"
#include "r5900/registers.h"

namespace tarn::r5900 {

/// Selects that the record does not hold read as 0.
inline void MFC0(Cop0Fields f) {
    const auto& selects = MipsCpu.CP0[f.rd];
    setWord(f.rt, f.sel < selects.size() ? selects[f.sel] : 0);
}
inline void MFC0() { straight<Cop0Fields, MFC0>("mfc0 %s,%s,%d"); }

/// Interrupts enabled, in the Status register.
inline constexpr u64 statusEnableMask = u64{1} << 16;
inline u64& status() { return MipsCpu.CP0[12][0]; }

// Neither writes a trace line: the previous one is shown again.

inline void EI() {
    status() |= statusEnableMask;
    MipsCpu.PC += 4;
}

inline void DI() {
    status() &= 0xFFFFFFFF & ~statusEnableMask;
    MipsCpu.PC += 4;
}

/// The kernel's handler moves PC, or leaves it and pauses.
inline void SYSCALL() { syscall_fct[static_cast<u8>(MipsCpu.GPR[REG_V1].low)](); }

// These two write their trace line whether tracing is on or not, for a later instruction without a line.

inline void CACHE() {
    traceText("CACHE");
    MipsCpu.PC += 4;
}

inline void SYNC() {
    traceText("SYNC");
    MipsCpu.PC += 4;
}

}  // namespace tarn::r5900
