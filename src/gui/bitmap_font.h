// Proportional bitmap fonts: a strip of glyphs whose top row marks where each one begins.
#pragma once

#include "base/types.h"
#include "gui/surface.h"

#include <array>
#include <memory>
#include <string_view>

namespace tarn {

/// A loaded font. Glyph rows are rows 1 and up of the image; row 0 carries the markers.
struct BitmapFont {
    s32 height = 0;                      ///< of a line, in pixels: the image's height
    SurfacePtr surface;                  ///< the strip, with a colour key
    std::array<SDL_Rect, 256> glyphs{};  ///< source rectangle by character code; empty: no glyph
};

/// Frees a font and its strip. If it is the current font, there is none afterwards.
void FreeFont(BitmapFont* font);

struct FontFreer {
    void operator()(BitmapFont* font) const { FreeFont(font); }
};

/// A font that is freed with its owner.
using FontPtr = std::unique_ptr<BitmapFont, FontFreer>;

/// The font of the operations that take none; every successful load sets it.
inline BitmapFont* CurrentFont = nullptr;

/// Where the printf-style operations format their text, which is cut at 1023 characters.
inline char bfont_buffer[1024];

/// A font from a BMP file or from a surface; null when there is none to load. A file that is not a sane BMP
/// counts as one that cannot be loaded.
FontPtr LoadFont(const char* fileName);
FontPtr LoadFontFromSurface(SurfacePtr surface);

/// Finds the glyphs by their markers and sets height and colour key. Exits when there is no surface.
void InitFont(BitmapFont* font);

/// Converts the strip to the pixel format of the surface that the font is drawn on, so that drawing a glyph
/// copies its pixels without converting or comparing each. The glyphs look the same.
void AdaptFont(BitmapFont* font, const SDL_Surface* surface);

s32 FontHeight(const BitmapFont* font);
s32 CharWidth(const BitmapFont* font, int character);

// Drawing. x and y are the top-left corner. Each returns the advance of the last character in pixels. Without
// a font nothing is drawn.

s32 PutCharFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, int character);
s32 PutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, std::string_view text);

/// Formats into bfont_buffer and returns it.
[[gnu::format(printf, 1, 2)]] const char* formatText(const char* format, ...);

template <typename... Arguments>
s32 PrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, const char* format,
                    Arguments... arguments) {
    return PutStringFont(surface, font, x, y, formatText(format, arguments...));
}

/// The pixel value at (x, y); all ones outside the surface's buffer. Complains on standard output of an x
/// outside the picture, and reads anyway.
u32 GetPixel(const SDL_Surface* surface, s32 x, s32 y);

/// The colour that is transparent in a strip: that of the pixel in its bottom-left corner.
u32 keyColour(const SDL_Surface* strip);

}  // namespace tarn
