// Saving and restoring the machine's records.
#include "history/machine_state.h"

#include "history/machine_fields.h"

#include <algorithm>
#include <cstring>

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

constexpr bool within(s64 value, s64 limit) { return value >= -limit && value <= limit; }

/// Whether the records are inside the bounds that the rest of the system takes for granted.
bool isPlausible(const Machine& machine) {
    const Ps2BiosRecord& bios = machine.bios;
    const GsState& gs = machine.gs;
    const u64 gifEnd = bios.gifAddress + u64{16} * bios.gifQuadwords;
    bool plausible = machine.cpu.delaySlotDepth == 0 && machine.cpu.stop <= Stop::UnalignedAddress &&
                     gifEnd <= mainMemorySize && machine.traceLine.back() == 0 && gs.primC >= 0 &&
                     gs.primC <= 3 && static_cast<u32>(gs.gifMode) <= 3 && gs.regn < 16 &&
                     gs.gtag.nreg <= 16 && gs.pmode <= 1 && gs.currentContext <= 1 && gs.currentPrim <= 1 &&
                     gs.currentCircuit <= 1;
    for (const GsVertex& vertex : gs.gsvertex) {
        plausible = plausible && within(vertex.x, 0xFFFF) && within(vertex.y, 0xFFFF) &&
                    within(vertex.u, 0xFFFF) && within(vertex.v, 0xFFFF);
    }
    for (unsigned i = 0; i < 2; ++i) {
        const GsScissor& scissor = gs._scissor[i];
        plausible =
            plausible && std::max({gs._gsfb[i].fbw, gs._tex0[i].tbw, gs._gsdspfb[i].fbw}) <= 0xFFFF &&
            std::max({gs._tex0[i].tw, gs._tex0[i].th, gs._offset[i].ofx, gs._offset[i].ofy}) <= 0xFFFF &&
            std::max({scissor.scax0, scissor.scax1, scissor.scay0, scissor.scay1}) <= 0xFFFF &&
            std::max({gs._gsmode[i].x, gs._gsmode[i].y, gs._gsmode[i].width, gs._gsmode[i].height}) <=
                0xFFFF &&
            std::max({gs._gsdspfb[i].dbx, gs._gsdspfb[i].dby}) <= 0xFFFF && gs._prim[i].type <= 7 &&
            gs._prim[i].ctxt <= 1 && gs._test[i].atst <= 7 && gs._test[i].ztst <= 3 && gs._test[i].afail <= 3;
    }
    return plausible;
}

void read(Machine& target, std::span<const u8> bytes) { forEachField(target, Reader{bytes}); }

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

bool restoreRecords(Machine& target, std::span<const u8> bytes) {
    const std::vector<u8> before = saveRecords(target);
    read(target, bytes);
    if (!isPlausible(target)) {
        read(target, before);
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
