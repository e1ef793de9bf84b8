// Operations of the toolkit that no program here calls: single pixels, and printing the text of a pane.
#pragma once

#include "base/types.h"
#include "gui/pane.h"

#include <SDL.h>

namespace tarn {

/// Stores a pixel value. x and y are not clipped to the picture, but nothing outside the buffer is touched.
void PutPixel(SDL_Surface* surface, s32 x, s32 y, u32 pixel);

/// The address of the pixel inside the surface, or null outside of it.
void* SDL_getPixel(SDL_Surface* surface, s32 x, s32 y);

/// Mixes the colour into the stored pixel, `opacity` / 256 (1-byte surfaces: / 255) of the way. Clipped.
void SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

/// The same for every pixel size through red, green and blue, `opacity` / 255 of the way.
void __slow_SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity);

/// Prints every line of a text pane to standard output, a debugging aid.
void koGUIwidget_printAllText(const koGUIwidget* pane);

}  // namespace tarn
