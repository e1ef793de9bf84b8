// System control of the complete processor: writes to coprocessor 0, and the Count register.
#pragma once

#include "base/device_codes.h"
#include "r5900/gpr.h"

namespace tarn::r5900 {

/// Driver steps so far; a branch and its delay slot are one step.
inline u64 stepsTaken() { return MipsCpu.cycle - MipsCpu.delaySlots; }

/// Count advances by one per step: the record holds its difference from the number of steps.
inline void MFC0_complete(Cop0Fields f) {
    const auto& selects = MipsCpu.CP0[f.rd];
    const u64 held = f.sel < selects.size() ? selects[f.sel] : 0;
    setWord(f.rt, f.rd == cp0_register::Count ? held + stepsTaken() : held);
}

/// PRId and selects 4 to 7 are read-only.
inline void MTC0(Cop0Fields f) {
    auto& selects = MipsCpu.CP0[f.rd];
    if (f.sel < selects.size() && f.rd != cp0_register::PRId) {
        selects[f.sel] = signExtend32(f.rd == cp0_register::Count ? gpr(f.rt) - stepsTaken() : gpr(f.rt));
    }
}

inline void PREF(MemoryFields) {}

}  // namespace tarn::r5900
