// Addressing of a surface's pixels, and loads and stores by pixel size.
#pragma once

#include "base/types.h"

#include <SDL.h>
#include <cstring>

namespace tarn {

/// The address of the pixel at (x, y), or null if that is not entirely inside the pixel buffer. Beyond the
/// end of a row is the next row.
inline u8* pixelInBuffer(const SDL_Surface* surface, s64 x, s64 y) {
    const s64 size = surface->format->BytesPerPixel;
    const s64 offset = y * surface->pitch + x * size;
    const bool inside = offset >= 0 && offset + size <= s64{surface->h} * surface->pitch;
    return surface->pixels != nullptr && inside ? static_cast<u8*>(surface->pixels) + offset : nullptr;
}

/// The address of the pixel at (x, y), or null outside the picture.
inline u8* pixelInPicture(const SDL_Surface* surface, s32 x, s32 y) {
    const bool inside = x >= 0 && y >= 0 && x < surface->w && y < surface->h;
    return inside ? pixelInBuffer(surface, x, y) : nullptr;
}

/// Stores the low 1, 2, 3 or 4 bytes of a pixel value, least significant first.
inline void storePixel(u8* address, u32 bytesPerPixel, u32 pixel) {
    if (bytesPerPixel <= 4) {
        std::memcpy(address, &pixel, bytesPerPixel);
    }
}

/// The value of 1, 2, 3 or 4 bytes, least significant first.
inline u32 loadPixel(const u8* address, u32 bytesPerPixel) {
    u32 pixel = 0;
    if (bytesPerPixel <= 4) {
        std::memcpy(&pixel, address, bytesPerPixel);
    }
    return pixel;
}

}  // namespace tarn
