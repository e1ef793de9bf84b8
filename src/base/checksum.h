// A checksum that detects damage. It does not protect against forgery.
#pragma once

#include "base/types.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace tarn {

/// FNV-1a over eight bytes at a time, and then over the rest.
inline u64 checksumOf(std::span<const u8> bytes) {
    constexpr u64 prime = 0x100000001B3;
    u64 sum = 0xCBF29CE484222325 ^ bytes.size();
    while (!bytes.empty()) {
        u64 word = 0;
        const std::size_t count = std::min(bytes.size(), sizeof word);
        std::memcpy(&word, bytes.data(), count);
        sum = (sum ^ word) * prime;
        sum ^= sum >> 32;
        bytes = bytes.subspan(count);
    }
    return sum;
}

}  // namespace tarn
