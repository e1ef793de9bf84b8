// Bitmap fonts: loading, glyph markers, drawing at a position.
#include "gui/bitmap_font.h"

#include "base/diagnostics.h"
#include "gui/blits.h"
#include "gui/bmp_file.h"
#include "gui/pixel_access.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace tarn {
namespace {

constexpr u32 firstGlyph = 33;  // "!"
constexpr u32 lastGlyph = 255;

constexpr Sint16 coordinate(s32 value) { return static_cast<Sint16>(value); }
constexpr Uint16 extent(s32 value) { return static_cast<Uint16>(value); }

}  // namespace

FontPtr LoadFontFromSurface(SurfacePtr surface) {
    if (surface == nullptr) {
        return nullptr;
    }
    FontPtr font(new (std::nothrow) BitmapFont);
    if (font != nullptr) {
        font->surface = std::move(surface);
        InitFont(font.get());
        CurrentFont = font.get();
    }
    return font;
}

FontPtr LoadFont(const char* fileName) {
    return fileName != nullptr ? LoadFontFromSurface(loadBmpFile(fileName)) : nullptr;
}

void FreeFont(BitmapFont* font) {
    if (CurrentFont == font) {
        CurrentFont = nullptr;
    }
    delete font;
}

void InitFont(BitmapFont* font) {
    SDL_Surface* surface = font->surface.get();
    if (surface == nullptr) {
        std::fprintf(stderr, "BFont: The font has not been loaded!\n");
        std::exit(1);
    }
    {
        const SurfaceLock lock(surface);
        const u32 separator = GetPixel(surface, 0, 0);
        u32 code = firstGlyph;
        s32 x = 0;
        while (x < surface->w - 1 && code <= lastGlyph) {
            if (GetPixel(surface, x, 0) == separator) {
                ++x;
                continue;
            }
            const s32 start = x;
            while (GetPixel(surface, x, 0) != separator && x < surface->w) {
                ++x;
            }
            font->glyphs[code++] = {coordinate(start), 1, extent(x - start), extent(surface->h)};
        }
        font->glyphs[' '] = {0, 0, font->glyphs[firstGlyph].w, extent(surface->h)};
    }
    font->height = surface->h;
    SDL_SetColorKey(surface, SDL_SRCCOLORKEY, keyColour(surface));
}

void AdaptFont(BitmapFont* font, const SDL_Surface* surface) {
    // A palette may contain the key colour twice, with one of them opaque, and so may pixels with a fourth
    // byte.
    SDL_Surface* strip = font->surface.get();
    if (strip == nullptr || strip->format->BytesPerPixel != 3) {
        return;
    }
    const u32 key = strip->format->colorkey;
    u8 red = 0, green = 0, blue = 0;
    SDL_GetRGB(key, strip->format, &red, &green, &blue);
    SDL_SetColorKey(strip, 0, 0);  // otherwise the conversion skips those pixels
    SurfacePtr adapted(SDL_ConvertSurface(strip, surface->format, SDL_SWSURFACE));
    if (adapted == nullptr) {
        SDL_SetColorKey(strip, SDL_SRCCOLORKEY, key);
        return;
    }
    SDL_SetAlpha(adapted.get(), 0, SDL_ALPHA_OPAQUE);
    SDL_SetColorKey(adapted.get(), SDL_SRCCOLORKEY, SDL_MapRGB(adapted->format, red, green, blue));
    font->surface = std::move(adapted);
}

s32 FontHeight(const BitmapFont* font) { return font->height; }

s32 CharWidth(const BitmapFont* font, int character) {
    return font->glyphs[static_cast<unsigned char>(character)].w;
}

s32 PutCharFont(SDL_Surface* surface, const BitmapFont* font, s32 x, s32 y, int character) {
    if (font == nullptr) {
        return 0;
    }
    SDL_Rect destination{coordinate(x), coordinate(y), font->glyphs[' '].w, extent(font->height)};
    if (character != ' ') {
        const SDL_Rect& glyph = font->glyphs[static_cast<unsigned char>(character)];
        blit(font->surface.get(), &glyph, surface, &destination);  // sets the width drawn
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

const char* formatText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (std::vsnprintf(bfont_buffer, sizeof bfont_buffer, format, arguments) < 0) {
        bfont_buffer[0] = 0;
    }
    va_end(arguments);
    return bfont_buffer;
}

u32 GetPixel(const SDL_Surface* surface, s32 x, s32 y) {
    if (x < 0) {
        printDiagnostic("x too small in GetPixel!\n");
    }
    if (x >= surface->w) {
        printDiagnostic("x too big in GetPixel!\n");
    }
    const SDL_PixelFormat* format = surface->format;
    const u8* address = pixelInBuffer(surface, x, y);
    const u32 size = format->BytesPerPixel;
    if (address == nullptr || size < 1 || size > 4) {
        return ~u32{0};
    }
    if (size == 3) {
        const auto channel = [&](u8 shift) { return shift / 8 < 3 ? address[shift / 8] : u8{0}; };
        return SDL_MapRGB(const_cast<SDL_PixelFormat*>(format), channel(format->Rshift),
                          channel(format->Gshift), channel(format->Bshift));
    }
    return loadPixel(address, size);
}

u32 keyColour(const SDL_Surface* strip) { return GetPixel(strip, 0, strip->h - 1); }

}  // namespace tarn
