// The rest of the font module, which the programs do not call.
#include "gui/font_extras.h"

#include "base/diagnostics.h"
#include "gui/toolkit_extras.h"

#include <algorithm>
#include <new>
#include <utility>

namespace tarn {
namespace {

s32 width(const SDL_Surface* surface) { return surface != nullptr ? surface->w : 0; }

}  // namespace

BitmapFont* GetCurrentFont() { return CurrentFont; }
void SetCurrentFont(BitmapFont* font) { CurrentFont = font; }
void SetFontHeight(BitmapFont* font, s32 height) { font->height = height; }

FontPtr SetFontColor(const BitmapFont* font, u8 red, u8 green, u8 blue) {
    FontPtr coloured(new (std::nothrow) BitmapFont);
    if (coloured == nullptr) {
        return nullptr;
    }
    coloured->height = font->height;
    coloured->glyphs = font->glyphs;
    SDL_Surface* source = font->surface.get();
    SurfacePtr copy(source != nullptr ? SDL_ConvertSurface(source, source->format, source->flags) : nullptr);
    if (copy == nullptr) {
        return coloured;
    }
    u32 key = 0;
    {
        const SurfaceLock sourceLock(source);
        const SurfaceLock copyLock(copy.get());
        key = keyColour(copy.get());
        printDiagnostic("looking...\n");
        for (s32 y = 0; y < source->h; ++y) {
            for (s32 x = 0; x < source->w; ++x) {
                const u32 pixel = GetPixel(source, x, y);
                if (pixel == key) {
                    continue;
                }
                SDL_Color colour{};
                SDL_GetRGB(pixel, source->format, &colour.r, &colour.g, &colour.b);
                const auto scaled = [](u8 channel, u8 factor) {
                    return static_cast<Uint8>(channel * factor / 255);
                };
                PutPixel(copy.get(), x, y,
                         SDL_MapRGB(copy->format, scaled(colour.r, red), scaled(colour.g, green),
                                    scaled(colour.b, blue)));
            }
        }
        printDiagnostic("unlooking...\n");
    }
    SDL_SetColorKey(copy.get(), SDL_SRCCOLORKEY, key);
    coloured->surface = std::move(copy);
    return coloured;
}

s32 TextWidth(std::string_view text) { return TextWidthFont(CurrentFont, text); }

s32 TextWidthFont(const BitmapFont* font, std::string_view text) {
    s32 sum = 0;
    for (const char character : font != nullptr ? text : std::string_view{}) {
        sum += CharWidth(font, character);
    }
    return sum;
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
    // Intentional: one more than the remainder, so with enough spaces the last word ends a pixel further
    // right.
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
