// The rest of the font module's interface: the current font and operations that use it, placed text,
// recolouring. The programs only call the width of a text.
#pragma once

#include "gui/bitmap_font.h"

namespace tarn {

BitmapFont* GetCurrentFont();
void SetCurrentFont(BitmapFont* font);
void SetFontHeight(BitmapFont* font, s32 height);

/// A new font with every pixel except the key colour scaled by red, green and blue / 255. Returns null if
/// there is no memory.
FontPtr SetFontColor(const BitmapFont* font, u8 red, u8 green, u8 blue);

/// The sum of the glyph widths, in pixels.
s32 TextWidth(std::string_view text);
s32 TextWidthFont(const BitmapFont* font, std::string_view text);

// Drawing, as in bitmap_font.h. Left, Centered, Right and Justified choose x from the surface's width.

s32 PutChar(SDL_Surface* surface, s32 x, s32 y, int character);
s32 PutString(SDL_Surface* surface, s32 x, s32 y, std::string_view text);
s32 LeftPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 LeftPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 CenteredPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 CenteredPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 RightPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 RightPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);
s32 JustifiedPutString(SDL_Surface* surface, s32 y, std::string_view text);
s32 JustifiedPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text);

// printf-style variants of these.

template <typename... Arguments>
s32 PrintString(SDL_Surface* surface, s32 x, s32 y, const char* format, Arguments... arguments) {
    return PutString(surface, x, y, formatText(format, arguments...));
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

}  // namespace tarn
