// Saving and restoring the machine's records.
#include "history/machine_state.h"

#include "history/machine_fields.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn::history {
namespace {

struct Writer {
    std::vector<u8>& bytes;

    template <typename T>
    void operator()(const T& field) const {
        static_assert(hasNoPadding<T>);
        const auto* first = reinterpret_cast<const u8*>(&field);
        bytes.insert(bytes.end(), first, first + sizeof field);
    }
    void operator()(const Buffer&) const {}
};

struct Reader {
    std::span<const u8> rest;

    template <typename T>
    void operator()(T& field) {
        static_assert(hasNoPadding<T>);
        std::memcpy(&field, rest.data(), sizeof field);
        rest = rest.subspan(sizeof field);
    }
    void operator()(Buffer&) {}
};

/// Whether the records are inside the bounds that the rest of the system takes for granted: what is used as
/// an index, and what decides how much one primitive or transfer has to do.
bool isPlausible(const Machine& machine) {
    const MipsCpuRecord& cpu = machine.cpu;
    const Ps2BiosRecord& bios = machine.bios;
    const GsState& gs = machine.gs;
    const u64 gifEnd = bios.gifAddress + u64{16} * bios.gifQuadwords;
    if (cpu.delaySlotDepth != 0 || cpu.stop > Stop::UnalignedAddress || machine.traceLine.back() != 0 ||
        gifEnd > mainMemorySize || gs.primC < 0 || gs.primC > 2 || gs.gifMode > GifMode::Image ||
        gs.regn > 15 || gs.gtag.nreg > 16) {
        return false;
    }
    struct Bound {
        u32 value;
        u32 highest;
    };
    constexpr u32 coordinate = 0xFFFF;
    constexpr u32 scissor = 0x7FF;
    std::vector<Bound> bounds{{gs.currentContext, 1}, {gs.currentPrim, 1}, {gs.currentCircuit, 1},
                              {gs.pmode, 1},          {gs.prac, 1},        {gs.gtag.nloop, 0x7FFF}};
    for (unsigned i = 0; i < 2; ++i) {
        const auto& [type, iip, tme, fge, abe, aa1, fst, ctxt, fix] = gs._prim[i];
        const GsScissor& rectangle = gs._scissor[i];
        bounds.insert(bounds.end(), {{type, 7},
                                     {ctxt, 1},
                                     {gs._test[i].atst, 7},
                                     {gs._test[i].ztst, 3},
                                     {gs._test[i].afail, 3},
                                     {gs._tex0[i].tbw, coordinate},
                                     {gs._tex0[i].tw, coordinate},
                                     {gs._tex0[i].th, coordinate},
                                     {gs._offset[i].ofx, coordinate},
                                     {gs._offset[i].ofy, coordinate},
                                     {rectangle.scax0, scissor},
                                     {rectangle.scax1, scissor},
                                     {rectangle.scay0, scissor},
                                     {rectangle.scay1, scissor},
                                     {gs._gsdspfb[i].dbx, coordinate},
                                     {gs._gsdspfb[i].dby, coordinate},
                                     {gs._gsmode[i].x, coordinate},
                                     {gs._gsmode[i].y, coordinate},
                                     {gs._gsmode[i].width, coordinate},
                                     {gs._gsmode[i].height, coordinate}});
    }
    for (const auto& [width, rows] : {std::pair{gs.srcbuf.bw, gs.srcbuf.maxRows},
                                      {gs.dstbuf.bw, gs.dstbuf.maxRows},
                                      {gs._gsfb[0].fbw, gs._gsfb[0].maxRows},
                                      {gs._gsfb[1].fbw, gs._gsfb[1].maxRows},
                                      {gs._gsdspfb[0].fbw, gs._gsdspfb[0].maxRows},
                                      {gs._gsdspfb[1].fbw, gs._gsdspfb[1].maxRows}}) {
        bounds.push_back({width, coordinate});
        bounds.push_back(
            {rows, width == 0 ? localMemoryWords : localMemoryWords / std::min(width, coordinate)});
    }
    for (const GsVertex& vertex : gs.gsvertex) {
        for (const s32 place : {vertex.x, vertex.y, vertex.u, vertex.v}) {
            bounds.push_back({static_cast<u32>(place) + coordinate, 2 * coordinate});
        }
    }
    return std::ranges::all_of(bounds, [](const Bound& bound) { return bound.value <= bound.highest; });
}

}  // namespace

std::vector<u8> saveRecords(const Machine& source) {
    std::vector<u8> bytes;
    bytes.reserve(8192);
    forEachField(source, Writer{bytes});
    return bytes;
}

std::size_t recordBytes() {
    static const std::size_t size = saveRecords(machine).size();
    return size;
}

void restoreRecords(Machine& target, std::span<const u8> bytes) { forEachField(target, Reader{bytes}); }

bool restoreForeignRecords(Machine& target, std::span<const u8> bytes) {
    const std::vector<u8> before = saveRecords(target);
    restoreRecords(target, bytes);
    if (!isPlausible(target)) {
        restoreRecords(target, before);
        return false;
    }
    return true;
}

std::vector<std::span<u8>> buffersOf(Machine& source) {
    std::vector<std::span<u8>> buffers;
    forEachField(source, [&buffers]<typename Field>(Field& field) {
        if constexpr (std::is_same_v<Field, Buffer>) {
            buffers.emplace_back(field.begin(), field.size());
        }
    });
    return buffers;
}

}  // namespace tarn::history
