// The pixel formats of the host: how a GS word (red in bits 0-7, green 8-15, blue 16-23) is stored in
// each. Channels are cut, not rounded.
#pragma once

#include "base/types.h"
#include "base/vectors.h"

#include <cstring>
#include <type_traits>

namespace tarn {

/// Two bytes: red in bits 10-14, green 5-9, blue 0-4.
struct HostPixel15 {
    static constexpr u32 bytes = 2;
    static constexpr bool wholePixel = true;  ///< every bit is written
    [[gnu::always_inline]] static void store(u8* pixel, u32 p) {
        const u16 word = static_cast<u16>((p & 0xF8) << 7 | (p & 0xF800) >> 6 | (p & 0xF80000) >> 19);
        std::memcpy(pixel, &word, sizeof word);
    }
};

/// Two bytes: red in bits 11-15, green 5-10, blue 0-4.
struct HostPixel16 {
    static constexpr u32 bytes = 2;
    static constexpr bool wholePixel = true;
    [[gnu::always_inline]] static void store(u8* pixel, u32 p) {
        const u16 word = static_cast<u16>((p & 0xF8) << 8 | (p & 0xFC00) >> 5 | (p & 0xF80000) >> 19);
        std::memcpy(pixel, &word, sizeof word);
    }
};

/// Three bytes: blue, green, red.
struct HostPixel24 {
    static constexpr u32 bytes = 3;
    static constexpr bool wholePixel = true;
    [[gnu::always_inline]] static void store(u8* pixel, u32 p) {
        pixel[0] = static_cast<u8>(p >> 16);
        pixel[1] = static_cast<u8>(p >> 8);
        pixel[2] = static_cast<u8>(p);
    }
};

/// Blue, green, red, and a fourth byte that keeps its value. Whole words, so that the loop vectorises.
struct HostPixel32 {
    static constexpr u32 bytes = 4;
    static constexpr bool wholePixel = false;
    [[gnu::always_inline]] static void store(u8* pixel, u32 p) {
        u32 word;
        std::memcpy(&word, pixel, sizeof word);
        word = (word & 0xFF000000) | (p & 0xFF) << 16 | (p & 0xFF00) | (p & 0xFF0000) >> 16;
        std::memcpy(pixel, &word, sizeof word);
    }
};

/// Stores four GS words as three bytes each, and overwrites the four bytes after them.
[[gnu::always_inline]] inline void storeFour24(u8* pixels, const u32* source) {
    u8 bytes __attribute__((vector_size(16)));
    std::memcpy(&bytes, source, sizeof bytes);
    bytes = __builtin_shufflevector(bytes, bytes, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 3, 7, 11, 15);
    std::memcpy(pixels, &bytes, sizeof bytes);
}

/// Stores `count` GS words as consecutive host pixels.
template <typename HostPixel>
void convertPixels(u8* destination, const u32* source, u32 count) {
    withVectors([=](auto words) __attribute__((always_inline)) {
        u32 i = 0;
        if constexpr (std::is_same_v<HostPixel, HostPixel24> && words == 8) {
            for (; count - i >= 6; i += 4) {  // the bytes after the four are those of the next two
                storeFour24(destination + std::size_t{i} * HostPixel::bytes, source + i);
            }
        }
        for (; i < count; ++i) {
            HostPixel::store(destination + std::size_t{i} * HostPixel::bytes, source[i]);
        }
    });
}

}  // namespace tarn
