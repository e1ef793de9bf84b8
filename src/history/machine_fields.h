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

/// A pointer to the current one of two records.
template <typename Pointer, typename Records>
struct Selection {
    Pointer& pointer;
    Records& records;
};
template <typename Pointer, typename Records>
Selection(Pointer&, Records&) -> Selection<Pointer, Records>;

/// Calls `visit` with each field of the machine: a value without padding, a Selection, or a Buffer. The order
/// is the same every time.
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
        // The words of local memory are its bytes.
        auto& [vRam, vRamUL, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors,
               alphas, tests, fbas, gsfb, zbuf, tex0, tex1, tex2, clamp, miptbp0, miptbp1, xyoffset, scissor,
               alpha, test, fba, prims, prim, prac, gsvertex, primC, rgba, texa, clut, fogcol, fogf, smask,
               dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY, imagePtr,
               imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes, gsdspfb, gsmode,
               magh, magv, interlace] = gs;
        visitAll(vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors,
                 alphas, tests, fbas, prims, prac, gsvertex, primC, rgba, texa, clut, fogcol, fogf, smask,
                 dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY, imagePtr,
                 imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes, magh, magv,
                 interlace);
        visitAll(Selection{gsfb, gsfbs}, Selection{zbuf, zbufs}, Selection{tex0, tex0s},
                 Selection{tex1, tex1s}, Selection{tex2, tex2s}, Selection{clamp, clamps},
                 Selection{miptbp0, miptbp0s}, Selection{miptbp1, miptbp1s}, Selection{xyoffset, offsets},
                 Selection{scissor, scissors}, Selection{alpha, alphas}, Selection{test, tests},
                 Selection{fba, fbas}, Selection{prim, prims}, Selection{gsdspfb, dspfbs},
                 Selection{gsmode, modes});
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
