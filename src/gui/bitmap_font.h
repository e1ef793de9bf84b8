// Proportional bitmap fonts: a strip of glyphs, with markers in the top row where each begins.
#pragma once

#include "base/types.h"
#include "gui/surface.h"

#include <array>
#include <memory>
#include <string_view>

namespace tarn {

/// A loaded font. The glyphs are in rows 1 and up of the image; row 0 has the markers.
struct BitmapFont {
    s32 height = 0;                      ///< of a line, in pixels: the image's height
    SurfacePtr surface;                  ///< the strip, with a colour key
    std::array<SDL_Rect, 256> glyphs{};  ///< source rectangle by character code; empty: no glyph
};

/// Frees a font and its strip. If it is the current font, no font is current afterwards.
void FreeFont(BitmapFont* font);

struct FontFreer {
    void operator()(BitmapFont* font) const { FreeFont(font); }
};

/// An owned font.
using FontPtr = std::unique_ptr<BitmapFont, FontFreer>;

/// The font for operations without a font parameter. Every successful load sets it.
inline BitmapFont* CurrentFont = nullptr;

/// The buffer of the printf-style operations, whose text is truncated to 1023 characters.
inline char bfont_buffer[1024];

/// Loads a font from a BMP file or a surface. Returns null on failure, which includes a malformed BMP file.
FontPtr LoadFont(const char* fileName);
FontPtr LoadFontFromSurface(SurfacePtr surface);

/// Finds the glyphs by their markers, and sets height and colour key. Exits if there is no surface.
void InitFont(BitmapFont* font);

/// Converts the strip to the pixel format of the surface that the font is drawn on, so that glyphs are copied
/// without converting each pixel. They look the same.
void AdaptFont(BitmapFont* font, const SDL_Surface* surface);

s32 FontHeight(const BitmapFont* font);
s32 CharWidth(const BitmapFont* font, int character);

// Drawing. x and y are the top-left corner. Each returns the advance of the last character in pixels, and
// draws nothing without a font.

s32 PutCharFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, int character);
s32 PutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, std::string_view text);

/// Formats into bfont_buffer and returns it.
[[gnu::format(printf, 1, 2)]] const char* formatText(const char* format, ...);

template <typename... Arguments>
s32 PrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, const char* format,
                    Arguments... arguments) {
    return PutStringFont(surface, font, x, y, formatText(format, arguments...));
}

/// The pixel value at (x, y), or all ones outside the surface's buffer. If x is outside the picture, prints a
/// message on standard output and reads anyway.
u32 GetPixel(const SDL_Surface* surface, s32 x, s32 y);

/// The colour that is transparent in a strip: that of the pixel in its bottom-left corner.
u32 keyColour(const SDL_Surface* strip);

}  // namespace tarn
