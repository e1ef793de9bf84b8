// System control: coprocessor 0, system calls, and the two no-ops with a name.
#pragma once

#include "base/device_codes.h"
#include "kernel/syscall_table.h"
#include "r5900/fields.h"
#include "r5900/gpr.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// Selects 4 to 7 read as 0.
inline void MFC0(Cop0Fields f) {
    const auto& selects = MipsCpu.CP0[f.rd];
    setWord(f.rt, f.sel < selects.size() ? selects[f.sel] : 0);
}

/// The interrupt enable bit of the Status register.
inline constexpr u64 statusEnableMask = u64{1} << 16;
inline u64& status() { return MipsCpu.CP0[cp0_register::Status][0]; }

inline void EI(NoFields) { status() |= statusEnableMask; }
inline void DI(NoFields) { status() &= 0xFFFFFFFF & ~statusEnableMask; }

/// The kernel's handler advances PC, or pauses without changing PC.
inline void SYSCALL() { syscall_fct[static_cast<u8>(MipsCpu.GPR[REG_V1].low)](); }

// Intentional: these write their trace line even without tracing; a later instruction may show it again.

inline void CACHE(NoFields) { traceText("CACHE"); }
inline void SYNC(NoFields) { traceText("SYNC"); }

}  // namespace tarn::r5900
