// Declares line drawing and single-pixel operations on SDL surfaces of 1 to 4 bytes a pixel. A colour is a
// pixel value of the surface's format; everything is clipped to the surface.
#pragma once

#include "base/types.h"

#include <SDL.h>

namespace tarn {

/// Bits of SDL_drawLine_Kq's flags. Lines are always drawn opaque and without anti-aliasing: bits 0 (use
/// the opacity) and 1 (anti-aliased) are accepted and ignored.
inline constexpr u8 lineLocksSurface = 8;

/// Draws the line from (x1, y1) to (x2, y2), both ends included.
void SDL_drawLine_Kq(SDL_Surface* surface, s32 x1, s32 y1, s32 x2, s32 y2, u32 colour, u8 opacity, u8 flags);

void SDL_putPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour);

/// The address of the pixel inside the surface, or null outside of it.
void* SDL_getPixel(SDL_Surface* surface, s32 x, s32 y);

/// Mixes the colour into the stored pixel, `opacity` / 256 (1-byte surfaces: / 255) of the way.
void SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

/// The same for every pixel size through red, green and blue, `opacity` / 255 of the way.
void __slow_SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

}  // namespace tarn
