// The rest of the toolkit, which the programs do not call: single pixels, and printing the text of a pane.
#pragma once

#include "base/types.h"
#include "gui/pane.h"

#include <SDL.h>

namespace tarn {

/// Stores a pixel value. x and y are not clipped to the picture, but nothing outside the buffer is written.
void PutPixel(SDL_Surface* surface, s32 x, s32 y, u32 pixel);

/// The address of the pixel inside the surface, or null outside of it.
void* SDL_getPixel(SDL_Surface* surface, s32 x, s32 y);

/// Blends the colour with the stored pixel by `opacity` / 256 (1-byte surfaces: / 255). Clipped.
void SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

/// The same for all pixel sizes by red, green and blue, and `opacity` / 255.
void __slow_SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

/// Prints all lines of a text pane to standard output, for debugging.
void koGUIwidget_printAllText(const koGUIwidget* pane);

}  // namespace tarn
