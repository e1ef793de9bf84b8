// The list of all fields of the machine, from which saving, restoring and comparing follow.
//
// Structured bindings take the records apart: they do not compile unless they name every field, and the
// fields visited must fill the record. So a new field cannot be forgotten here.
#pragma once

#include "base/object_bytes.h"
#include "machine/machine.h"

#include <array>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

namespace tarn {

/// Whether a type has no padding, so that its bytes can be stored as they are in memory.
template <typename T>
inline constexpr bool hasNoPadding = std::has_unique_object_representations_v<T>;
template <>
inline constexpr bool hasNoPadding<f32> = true;
template <>
inline constexpr bool hasNoPadding<GsVertex> = sizeof(GsVertex) == 10 * sizeof(u32);
template <typename T, std::size_t count>
inline constexpr bool hasNoPadding<std::array<T, count>> = hasNoPadding<T>;

/// Whether a record consists of these fields, in this order.
template <typename Record, typename... Fields>
consteval bool makeUp() {
    std::size_t end = 0;
    const auto place = [&end](std::size_t size, std::size_t alignment) {
        end = (end + alignment - 1) / alignment * alignment + size;
    };
    (place(sizeof(Fields), alignof(Fields)), ...);
    place(0, alignof(Record));
    return end == sizeof(Record);
}

/// Calls `visit` with each field of a part of the machine.
template <typename Record, typename Visit, typename... Fields>
void visitRecord(const Record&, Visit&& visit, Fields&... fields) {
    static_assert(makeUp<Record, std::remove_const_t<Fields>...>(), "a field is missing");
    (visit(fields), ...);
}

/// Calls `visit` with each field of the GS's state, always in the same order.
template <typename State, typename Visit>
void forEachGsField(State& gs, Visit&& visit) {
    auto& [vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets, scissors, alphas,
           tests, fbas, currentContext, prims, currentPrim, prac, gsvertex, primC, rgba, texa, clut, fogcol,
           fogf, smask, dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos, imageW, imageH, imageX, imageY,
           imagePtr, imageTransfer, work, gtag, regs, regn, gifMode, pmode, smode2, dspfbs, modes,
           currentCircuit, magh, magv, interlace] = gs;
    visitRecord(gs, visit, vRam, gsfbs, zbufs, tex0s, tex1s, tex2s, clamps, miptbp0s, miptbp1s, offsets,
                scissors, alphas, tests, fbas, currentContext, prims, currentPrim, prac, gsvertex, primC,
                rgba, texa, clut, fogcol, fogf, smask, dthe, colclamp, pabe, srcbuf, dstbuf, ldbw, trxpos,
                imageW, imageH, imageX, imageY, imagePtr, imageTransfer, work, gtag, regs, regn, gifMode,
                pmode, smode2, dspfbs, modes, currentCircuit, magh, magv, interlace);
}

/// Calls `visit` with each field of the machine, always in the same order: a value without padding, or a
/// Buffer.
template <typename MachineType, typename Visit>
void forEachField(MachineType& source, Visit&& visit) {
    auto& [cpu, bios, gs, memory, counters, traceLine] = source;
    static_assert(makeUp<Machine, MipsCpuRecord, Ps2BiosRecord, GsState, MemoryAreas, MachineCounters,
                         std::remove_const_t<decltype(source.traceLine)>>());
    {
        auto& [opcode, pause, GPR, HI, LO, CP0, FPR128, FPR32, FCR, ACC, SA, cycle, PC, entry, delaySlotDepth,
               delaySlots, stopCycle, stop] = cpu;
        visitRecord(cpu, visit, opcode, pause, GPR, HI, LO, CP0, FPR128, FPR32, FCR, ACC, SA, cycle, PC,
                    entry, delaySlotDepth, delaySlots, stopCycle, stop);
    }
    {
        auto& [writePending, writeOffset, writeValue, readPending, readOffset, readValue, channels, handlers,
               semaInUse, semaWords, sif0StartRequest, vsyncCountdown, gifAddress, gifQuadwords] = bios;
        const auto visitSlots = [&]<typename Field>(Field& field) {
            if constexpr (std::is_same_v<std::remove_const_t<Field>,
                                         std::array<DmacHandlerSlot, dmaChannelCount>>) {
                for (auto& slot : field) {
                    auto& [address, savedPc, active] = slot;
                    visitRecord(slot, visit, address, savedPc, active);
                }
            } else {
                visit(field);
            }
        };
        visitRecord(bios, visitSlots, writePending, writeOffset, writeValue, readPending, readOffset,
                    readValue, channels, handlers, semaInUse, semaWords, sif0StartRequest, vsyncCountdown,
                    gifAddress, gifQuadwords);
    }
    forEachGsField(gs, visit);
    {
        auto& [main, special, gsArea, bios_] = memory;
        visitRecord(memory, visit, main, special, gsArea, bios_);
    }
    {
        auto& [driverSteps, verticalBlanks_, dmaTransfers, gifQuadwords] = counters;
        visitRecord(counters, visit, driverSteps, verticalBlanks_, dmaTransfers, gifQuadwords);
    }
    visit(traceLine);
}

/// Appends the bytes of each field that is not a buffer.
struct FieldWriter {
    std::vector<u8>& bytes;

    template <typename T>
    void operator()(const T& field) const {
        static_assert(hasNoPadding<T>);
        const std::span<const u8> added = bytesOfObject(field);
        bytes.insert(bytes.end(), added.begin(), added.end());
    }
    void operator()(const Buffer&) const {}
};

/// Sets each field that is not a buffer from bytes written by FieldWriter.
struct FieldReader {
    std::span<const u8> rest;

    template <typename T>
    void operator()(T& field) {
        static_assert(hasNoPadding<T>);
        std::memcpy(&field, rest.data(), sizeof field);
        rest = rest.subspan(sizeof field);
    }
    void operator()(Buffer&) {}
};

}  // namespace tarn
