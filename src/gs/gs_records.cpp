// Saving and restoring the GS's registers.
#include "gs/gs_records.h"

#include "gs/local_memory.h"
#include "machine/machine_fields.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace tarn {
namespace {

// The largest values that the register fields can hold.
constexpr u32 largestWidth = 63 * 64;
constexpr u32 largestPosition = 2047;  // of scissors and transfers
constexpr u32 largestCoordinate = 4095;
constexpr u32 largestTexture = 1024;

constexpr bool atMost(u32 limit, std::initializer_list<u32> values) { return std::max(values) <= limit; }

/// maxRows is 0 until the register is written.
constexpr bool isBuffer(u32 width, u32 maxRows) {
    return width <= largestWidth && (maxRows == maxRowsOf(width) || maxRows == maxRowsOf(0) || maxRows == 0);
}

bool isVertex(const GsVertex& vertex) {
    return atMost(largestCoordinate, {static_cast<u32>(vertex.x), static_cast<u32>(vertex.y)}) &&
           atMost(2047, {static_cast<u32>(vertex.u), static_cast<u32>(vertex.v)});
}

bool isContext(const GsState& state, unsigned i) {
    const GsTex0& tex0 = state._tex0[i];
    const GsScissor& scissor = state._scissor[i];
    const GsOffset& offset = state._offset[i];
    const GsTest& test = state._test[i];
    return isBuffer(state._gsfb[i].fbw, state._gsfb[i].maxRows) && tex0.tbw <= largestWidth &&
           atMost(largestTexture, {tex0.tw, tex0.th}) &&
           atMost(largestPosition, {scissor.scax0, scissor.scay0, scissor.scax1, scissor.scay1}) &&
           atMost(largestCoordinate, {offset.ofx, offset.ofy}) && atMost(7, {test.atst}) &&
           atMost(3, {test.ztst, test.afail}) && state._alpha[i].fix <= 255;
}

bool isPrimitive(const GsPrim& prim) { return prim.type <= 7 && prim.ctxt <= 1; }

bool isCircuit(const GsDispFb& buffer, const GsDisplay& display) {
    return isBuffer(buffer.fbw, buffer.maxRows) && atMost(largestPosition, {buffer.dbx, buffer.dby}) &&
           atMost(largestCoordinate + 1, {display.x, display.y, display.width, display.height});
}

}  // namespace

bool isReachable(const GsState& state) {
    return isContext(state, 0) && isContext(state, 1) && isPrimitive(state._prim[0]) &&
           isPrimitive(state._prim[1]) && std::ranges::all_of(state.gsvertex, isVertex) && state.primC >= 0 &&
           state.primC < 3 && isBuffer(state.srcbuf.bw, state.srcbuf.maxRows) &&
           isBuffer(state.dstbuf.bw, state.dstbuf.maxRows) && state.ldbw <= largestWidth &&
           atMost(largestPosition,
                  {state.trxpos.ssax, state.trxpos.ssay, state.trxpos.dsax, state.trxpos.dsay}) &&
           state.gtag.nloop < 0x8000 && state.gtag.nreg <= 16 && state.regn < 16 &&
           state.gifMode <= GifMode::Image && isCircuit(state._gsdspfb[0], state._gsmode[0]) &&
           isCircuit(state._gsdspfb[1], state._gsmode[1]) &&
           atMost(1, {state.currentContext, state.currentPrim, state.prac, state.pmode, state.currentCircuit,
                      state.interlace});
}

std::vector<u8> saveGsRecords(const GsState& state) {
    std::vector<u8> bytes;
    forEachGsField(state, FieldWriter{bytes});
    return bytes;
}

bool restoreGsRecords(GsState& state, std::span<const u8> bytes) {
    GsState restored;
    if (bytes.size() != saveGsRecords(restored).size()) {
        return false;
    }
    forEachGsField(restored, FieldReader{bytes});
    if (!isReachable(restored)) {
        return false;
    }
    restored.vRam = std::move(state.vRam);
    state = std::move(restored);
    return true;
}

}  // namespace tarn
