// The list of everything that a run depends on. Saving, restoring and comparing follow from it.
//
// Every record is taken apart by a structured binding, which names all of its fields or does not compile: a
// new field cannot be forgotten here.
#pragma once

#include "machine/machine.h"

#include <array>
#include <type_traits>

namespace tarn::history {

/// Whether all bytes of a value of this type belong to it, so that it can be stored as it lies in memory.
template <typename T>
inline constexpr bool hasNoPadding = std::has_unique_object_representations_v<T>;
template <>
inline constexpr bool hasNoPadding<f32> = true;
template <>
inline constexpr bool hasNoPadding<GsVertex> = sizeof(GsVertex) == 10 * sizeof(u32);
template <typename T, std::size_t count>
inline constexpr bool hasNoPadding<std::array<T, count>> = hasNoPadding<T>;

/// Calls `visit` with each field of the machine: a value without padding, or a Buffer. The order is the same
/// every time.
template <typename MachineType, typename Visit>
void forEachField(MachineType& machine, Visit&& visit) {
    const auto visitAll = [&visit](auto&&... fields) { (visit(fields), ...); };
    auto& [cpu, bios, gs, memory, counters, traceLine] = machine;
    {
        auto& [opcode, pause, GPR, HI, LO, CP0, FPR128, FPR32, FCR, ACC, SA, cycle, PC, entry, delaySlotDepth,
               delaySlots, stopCycle, stop] = cpu;
        visitAll(opcode, pause, GPR, HI, LO, CP0, FPR128, FPR32, FCR, ACC, SA, cycle, PC, entry,
                 delaySlotDepth, delaySlots, stopCycle, stop);
    }
    {
        auto& [writePending, writeOffset, writeValue, readPending, readOffset, readValue, channels, handlers,
               semaInUse, semaWords, sif0StartRequest, vsyncCountdown, gifAddress, gifQuadwords] = bios;
        visitAll(writePending, writeOffset, writeValue, readPending, readOffset, readValue, channels,
                 semaInUse, semaWords, sif0StartRequest, vsyncCountdown, gifAddress, gifQuadwords);
        for (auto& handler : handlers) {
            auto& [address, savedPc, active] = handler;
            visitAll(address, savedPc, active);
        }
    }
    {
        auto& [vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors, alphas,
               tests, fbas, context, prims, prim, prac, gsvertex, primC, rgba, texa, clut, fogcol, fogf,
               smask, dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY,
               imagePtr, imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes,
               circuit, magh, magv, interlace] = gs;
        visitAll(vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors,
                 alphas, tests, fbas, context, prims, prim, prac, gsvertex, primC, rgba, texa, clut, fogcol,
                 fogf, smask, dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX,
                 imageY, imagePtr, imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs,
                 modes, circuit, magh, magv, interlace);
    }
    {
        auto& [main, special, gsArea, bios_] = memory;
        visitAll(main, special, gsArea, bios_);
    }
    {
        auto& [driverSteps, verticalBlanks_, dmaTransfers, gifQuadwords] = counters;
        visitAll(driverSteps, verticalBlanks_, dmaTransfers, gifQuadwords);
    }
    visitAll(traceLine);
}

}  // namespace tarn::history
