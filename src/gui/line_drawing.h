// Line drawing on SDL surfaces of 1 to 4 bytes per pixel. Colours are pixel values in the surface's format.
// Lines are clipped to the surface.
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

}  // namespace tarn
