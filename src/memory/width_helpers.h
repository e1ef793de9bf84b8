// Copies between a buffer of guest memory and a guest value, for each width. Guest and host are both
// little-endian; no alignment is needed. The caller checks bounds.
#pragma once

#include "base/types.h"
#include "memory/width.h"

#include <bit>
#include <cstring>

namespace tarn {

static_assert(std::endian::native == std::endian::little, "guest memory is copied without swapping bytes");

/// Loads a value of type T from `buffer + offset`.
template <typename T>
T loadFrom(const u8* buffer, u32 offset) {
    T value;
    std::memcpy(&value, buffer + offset, sizeof value);
    return value;
}
template <typename T>
void storeTo(u8* buffer, u32 offset, T value) {
    std::memcpy(buffer + offset, &value, sizeof value);
}

inline void MipsMemoryWriteDW(u8* buffer, u32 offset, u64 value) { storeTo(buffer, offset, value); }
inline void MipsMemoryWriteW(u8* buffer, u32 offset, u32 value) { storeTo(buffer, offset, value); }
inline void MipsMemoryWriteHW(u8* buffer, u32 offset, u16 value) { storeTo(buffer, offset, value); }
inline void MipsMemoryWriteB(u8* buffer, u32 offset, u8 value) { storeTo(buffer, offset, value); }

inline void MipsMemoryReadDQ(GuestValue* destination, const u8* buffer, u32 offset) {
    *destination = {loadFrom<u64>(buffer, offset), loadFrom<u64>(buffer, offset + 8)};
}
inline void MipsMemoryReadDWH(GuestValue* destination, const u8* buffer, u32 offset) {
    destination->high = loadFrom<u64>(buffer, offset);
}
inline void MipsMemoryReadDW(GuestValue* destination, const u8* buffer, u32 offset) {
    destination->low = loadFrom<u64>(buffer, offset);
}
inline void MipsMemoryReadW(GuestValue* destination, const u8* buffer, u32 offset) {
    destination->low = loadFrom<u32>(buffer, offset);
}
inline void MipsMemoryReadHW(GuestValue* destination, const u8* buffer, u32 offset) {
    destination->low = loadFrom<u16>(buffer, offset);
}
inline void MipsMemoryReadB(GuestValue* destination, const u8* buffer, u32 offset) {
    destination->low = loadFrom<u8>(buffer, offset);
}

/// Stores the part of `value` that the width selects. Returns false, and stores nothing, for an invalid code.
inline bool writeWidth(u8* buffer, u32 offset, GuestValue value, Width width) {
    switch (width) {
    case Width::Quadword:
        MipsMemoryWriteDW(buffer, offset, value.low);
        MipsMemoryWriteDW(buffer, offset + 8, value.high);
        return true;
    case Width::Doubleword:
        MipsMemoryWriteDW(buffer, offset, value.low);
        return true;
    case Width::Word:
        MipsMemoryWriteW(buffer, offset, static_cast<u32>(value.low));
        return true;
    case Width::Halfword:
        MipsMemoryWriteHW(buffer, offset, static_cast<u16>(value.low));
        return true;
    case Width::Byte:
        MipsMemoryWriteB(buffer, offset, static_cast<u8>(value.low));
        return true;
    case Width::HighDoubleword:
        MipsMemoryWriteDW(buffer, offset, value.high);
        return true;
    }
    return false;
}

/// Loads what the width selects into `destination`. Returns false, and changes nothing, for an invalid code.
inline bool readWidth(GuestValue* destination, const u8* buffer, u32 offset, Width width) {
    switch (width) {
    case Width::Quadword:
        MipsMemoryReadDQ(destination, buffer, offset);
        return true;
    case Width::Doubleword:
        MipsMemoryReadDW(destination, buffer, offset);
        return true;
    case Width::Word:
        MipsMemoryReadW(destination, buffer, offset);
        return true;
    case Width::Halfword:
        MipsMemoryReadHW(destination, buffer, offset);
        return true;
    case Width::Byte:
        MipsMemoryReadB(destination, buffer, offset);
        return true;
    case Width::HighDoubleword:
        MipsMemoryReadDWH(destination, buffer, offset);
        return true;
    }
    return false;
}

}  // namespace tarn
