// Owns the drawing of text with a bitmap font.
#include "gui/bitmap_font.h"

#include "gui/blits.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace tarn {
namespace {

s32 width(const SDL_Surface* surface) { return surface != nullptr ? surface->w : 0; }

}  // namespace

const char* formatText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (std::vsnprintf(bfont_buffer, sizeof bfont_buffer, format, arguments) < 0) {
        bfont_buffer[0] = 0;
    }
    va_end(arguments);
    return bfont_buffer;
}

s32 TextWidth(std::string_view text) { return TextWidthFont(CurrentFont, text); }

s32 TextWidthFont(const BitmapFont* font, std::string_view text) {
    s32 sum = 0;
    for (const char character : font != nullptr ? text : std::string_view{}) {
        sum += CharWidth(font, character);
    }
    return sum;
}

s32 PutCharFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, int character) {
    if (font == nullptr) {
        return 0;
    }
    SDL_Rect destination{static_cast<Sint16>(x), static_cast<Sint16>(y), font->glyphs[' '].w,
                         static_cast<Uint16>(font->height)};
    if (character != ' ') {
        const SDL_Rect& glyph = font->glyphs[static_cast<unsigned char>(character)];
        blit(font->surface, &glyph, surface, &destination);  // leaves the width it has drawn
    }
    return destination.w;
}

s32 PutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, std::string_view text) {
    s32 advance = 0;
    for (const char character : text) {
        advance = PutCharFont(surface, font, x, y, character);
        x += advance;
    }
    return advance;
}

s32 LeftPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text) {
    return PutStringFont(surface, font, 0, y, text);
}

s32 CenteredPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text) {
    return PutStringFont(surface, font, width(surface) / 2 - TextWidthFont(font, text) / 2, y, text);
}

s32 RightPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text) {
    return PutStringFont(surface, font, width(surface) - TextWidthFont(font, text) - 1, y, text);
}

s32 JustifiedPutStringFont(SDL_Surface* surface, const BitmapFont* font, s32 y, std::string_view text) {
    const s32 blanks = static_cast<s32>(std::count(text.begin(), text.end(), ' '));
    const s32 extra = width(surface) - (TextWidthFont(font, text) + 1);
    if (font == nullptr || blanks == 0 || extra <= 0) {
        return PutStringFont(surface, font, 0, y, text);
    }
    const s32 each = extra / blanks;
    // One more than the remainder, so the last word ends a pixel further right when there are blanks enough.
    s32 widerGaps = extra % blanks + 1;
    s32 x = 0;
    for (std::size_t blank = 0; (blank = text.find(' ')) != std::string_view::npos;) {
        const std::string_view word = text.substr(0, blank);
        PutStringFont(surface, font, x, y, word);
        x += TextWidthFont(font, word) + each + CharWidth(font, ' ');
        if (widerGaps-- > 0) {
            ++x;
        }
        text.remove_prefix(blank + 1);
    }
    return PutStringFont(surface, font, x, y, text);
}

// The current-font twins.

s32 PutChar(SDL_Surface* surface, s32 x, s32 y, int character) {
    return PutCharFont(surface, CurrentFont, x, y, character);
}
s32 PutString(SDL_Surface* surface, s32 x, s32 y, std::string_view text) {
    return PutStringFont(surface, CurrentFont, x, y, text);
}
s32 LeftPutString(SDL_Surface* surface, s32 y, std::string_view text) {
    return LeftPutStringFont(surface, CurrentFont, y, text);
}
s32 CenteredPutString(SDL_Surface* surface, s32 y, std::string_view text) {
    return CenteredPutStringFont(surface, CurrentFont, y, text);
}
s32 RightPutString(SDL_Surface* surface, s32 y, std::string_view text) {
    return RightPutStringFont(surface, CurrentFont, y, text);
}
s32 JustifiedPutString(SDL_Surface* surface, s32 y, std::string_view text) {
    return JustifiedPutStringFont(surface, CurrentFont, y, text);
}

}  // namespace tarn
