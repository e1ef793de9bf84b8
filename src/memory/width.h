// Width codes: the size and the register half of a memory access.
#pragma once

#include "base/types.h"

namespace tarn {

/// A read of 4 bytes or less zero-extends to 64 bits and leaves the other half of the register unchanged.
enum class Width : u8 {
    Quadword = 1,
    Doubleword = 2,
    Word = 4,
    Halfword = 8,
    Byte = 16,
    HighDoubleword = 32,  ///< 8 bytes from or into bits 64-127 of the register
};

/// Bytes of guest memory that an access covers; 0 for an invalid code.
constexpr u32 bytesOf(Width width) {
    switch (width) {
    case Width::Quadword:
        return 16;
    case Width::Doubleword:
    case Width::HighDoubleword:
        return 8;
    case Width::Word:
        return 4;
    case Width::Halfword:
        return 2;
    case Width::Byte:
        return 1;
    }
    return 0;
}

}  // namespace tarn
