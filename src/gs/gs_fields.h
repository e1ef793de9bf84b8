// The list of all fields of the GS's state. Saving and restoring follow from it.
#pragma once

#include "machine/gs_state.h"

namespace tarn {

/// Calls `visit` with each field but local memory, always in the same order. The structured binding names all
/// members or does not compile: a new one cannot be forgotten.
template <typename State, typename Visit>
void forEachGsField(State& state, Visit&& visit) {
    auto& [vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors, alphas,
           tests, fbas, context, prims, primIndex, prac, gsvertex, primC, rgba, texa, clut, fogcol, fogf,
           smask, dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY,
           imagePtr, imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes, circuit,
           magh, magv, interlace] = state;
    const auto visitAll = [&visit](auto&... fields) { (visit(fields), ...); };
    visitAll(gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors, alphas, tests,
             fbas, context, prims, primIndex, prac, gsvertex, primC, rgba, texa, clut, fogcol, fogf, smask,
             dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY, imagePtr,
             imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes, circuit, magh,
             magv, interlace);
}

}  // namespace tarn
