// Declares proportional bitmap fonts: a font is a strip of glyphs whose top row marks where each one begins.
#pragma once

#include "base/types.h"

#include <SDL.h>
#include <array>
#include <string_view>

namespace tarn {

/// A loaded font. Glyph rows are rows 1 and up of the image; row 0 carries the markers.
struct BitmapFont {
    s32 height = 0;                      ///< of a line, in pixels: the image's height
    SDL_Surface* surface = nullptr;      ///< the strip, owned, with a colour key
    std::array<SDL_Rect, 256> glyphs{};  ///< source rectangle by character code; empty: no glyph
};

/// The font of the operations that take none; every successful load sets it.
inline BitmapFont* CurrentFont = nullptr;

/// Where the printf-style operations format their text, which is cut at 1023 characters.
inline char bfont_buffer[1024];

// Loading and settings.

/// A font from a BMP file or from a surface (which it then owns); null when there is none to load. A file
/// that is no sane BMP counts as one that cannot be loaded.
BitmapFont* LoadFont(const char* fileName);
BitmapFont* LoadFontFromSurface(SDL_Surface* surface);

/// Finds the glyphs by their markers and sets height and colour key. Exits when there is no surface.
void InitFont(BitmapFont* font);
void FreeFont(BitmapFont* font);

/// Gives the strip the pixel format of the surface that the font is drawn on, so that drawing a glyph copies
/// its pixels and skips the others, without a conversion or a comparison each. The glyphs look the same.
void AdaptFont(BitmapFont* font, const SDL_Surface* surface);

BitmapFont* GetCurrentFont();
void SetCurrentFont(BitmapFont* font);
s32 FontHeight(const BitmapFont* font);
void SetFontHeight(BitmapFont* font, s32 height);
s32 CharWidth(const BitmapFont* font, int character);

/// A new font with every pixel but the key colour scaled by red, green and blue / 255; null without memory.
BitmapFont* SetFontColor(const BitmapFont* font, u8 red, u8 green, u8 blue);

/// The sum of the glyph widths, in pixels.
s32 TextWidth(std::string_view text);
s32 TextWidthFont(const BitmapFont* font, std::string_view text);

// Drawing. x and y are the top-left corner; each returns the advance of the last character in pixels. Left,
// Centered, Right and Justified choose x from the surface's width. Without a font nothing is drawn.

s32 PutChar(SDL_Surface* surface, s32 x, s32 y, int character);
s32 PutCharFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, int character);

s32 PutString(SDL_Surface* surface, s32 x, s32 y, std::string_view text);
s32 PutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, std::string_view text);
s32 LeftPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 LeftPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 CenteredPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 CenteredPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 RightPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 RightPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 JustifiedPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 JustifiedPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);

// The printf-style twins of the above.

/// Formats into bfont_buffer and returns it.
const char* formatText(const char* format, ...);

template <typename... Arguments>
s32 PrintString(SDL_Surface* surface, s32 x, s32 y, const char* format, Arguments... arguments) {
    return PutString(surface, x, y, formatText(format, arguments...));
}
template <typename... Arguments>
s32 PrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, const char* format,
                    Arguments... arguments) {
    return PutStringFont(surface, font, x, y, formatText(format, arguments...));
}

template <typename... Arguments>
s32 LeftPrintString(SDL_Surface* surface, s32 y, const char* format, Arguments... arguments) {
    return LeftPutString(surface, y, formatText(format, arguments...));
}
template <typename... Arguments>
s32 LeftPrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, const char* format,
                        Arguments... arguments) {
    return LeftPutStringFont(surface, font, y, formatText(format, arguments...));
}

template <typename... Arguments>
s32 CenteredPrintString(SDL_Surface* surface, s32 y, const char* format, Arguments... arguments) {
    return CenteredPutString(surface, y, formatText(format, arguments...));
}
template <typename... Arguments>
s32 CenteredPrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, const char* format,
                            Arguments... arguments) {
    return CenteredPutStringFont(surface, font, y, formatText(format, arguments...));
}

template <typename... Arguments>
s32 RightPrintString(SDL_Surface* surface, s32 y, const char* format, Arguments... arguments) {
    return RightPutString(surface, y, formatText(format, arguments...));
}
template <typename... Arguments>
s32 RightPrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, const char* format,
                         Arguments... arguments) {
    return RightPutStringFont(surface, font, y, formatText(format, arguments...));
}

template <typename... Arguments>
s32 JustifiedPrintString(SDL_Surface* surface, s32 y, const char* format, Arguments... arguments) {
    return JustifiedPutString(surface, y, formatText(format, arguments...));
}
template <typename... Arguments>
s32 JustifiedPrintStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, const char* format,
                             Arguments... arguments) {
    return JustifiedPutStringFont(surface, font, y, formatText(format, arguments...));
}

// Pixel access on any surface. x and y are not clipped to the picture, but nothing outside the surface's
// buffer is touched: a read there gives all ones.

/// The pixel value; complains on standard output of an x outside the picture, and reads anyway.
u32 GetPixel(const SDL_Surface* surface, s32 x, s32 y);
void PutPixel(SDL_Surface* surface, s32 x, s32 y, u32 pixel);

}  // namespace tarn
