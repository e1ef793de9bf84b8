// Owns fonts as records: loading, glyph markers, settings, recolouring, and the pixel access they need.
#include "base/diagnostics.h"
#include "gui/bitmap_font.h"

#include "gui/bmp_file.h"
#include "gui/pixel_access.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace tarn {
namespace {

constexpr u32 firstGlyph = 33;  // "!"
constexpr u32 lastGlyph = 255;

constexpr Sint16 coordinate(s32 value) { return static_cast<Sint16>(value); }
constexpr Uint16 extent(s32 value) { return static_cast<Uint16>(value); }

/// The pixel in the bottom-left corner marks what is transparent.
u32 keyColour(const SDL_Surface* surface) { return GetPixel(surface, 0, surface->h - 1); }

}  // namespace

BitmapFont* LoadFontFromSurface(SDL_Surface* surface) {
    if (surface == nullptr) {
        return nullptr;
    }
    auto* font = new (std::nothrow) BitmapFont;
    if (font == nullptr) {
        return nullptr;
    }
    font->surface = surface;
    InitFont(font);
    CurrentFont = font;
    return font;
}

BitmapFont* LoadFont(const char* fileName) {
    if (fileName == nullptr) {
        return nullptr;
    }
    SDL_Surface* surface = loadBmpFile(fileName);
    BitmapFont* font = LoadFontFromSurface(surface);
    if (font == nullptr) {
        SDL_FreeSurface(surface);
    }
    return font;
}

void InitFont(BitmapFont* font) {
    SDL_Surface* surface = font->surface;
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
    // A palette could have the transparent colour twice, once to be drawn; so could pixels with a fourth
    // byte.
    if (font->surface == nullptr || font->surface->format->BytesPerPixel != 3) {
        return;
    }
    const u32 key = font->surface->format->colorkey;
    u8 red = 0, green = 0, blue = 0;
    SDL_GetRGB(key, font->surface->format, &red, &green, &blue);
    SDL_SetColorKey(font->surface, 0, 0);  // or the conversion would leave those pixels out
    SDL_Surface* adapted = SDL_ConvertSurface(font->surface, surface->format, SDL_SWSURFACE);
    if (adapted == nullptr) {
        SDL_SetColorKey(font->surface, SDL_SRCCOLORKEY, key);
        return;
    }
    SDL_FreeSurface(font->surface);
    font->surface = adapted;
    SDL_SetAlpha(adapted, 0, SDL_ALPHA_OPAQUE);
    SDL_SetColorKey(adapted, SDL_SRCCOLORKEY, SDL_MapRGB(adapted->format, red, green, blue));
}

void FreeFont(BitmapFont* font) {
    if (font == nullptr) {
        return;
    }
    if (CurrentFont == font) {
        CurrentFont = nullptr;
    }
    SDL_FreeSurface(font->surface);
    delete font;
}

BitmapFont* GetCurrentFont() { return CurrentFont; }
void SetCurrentFont(BitmapFont* font) { CurrentFont = font; }
s32 FontHeight(const BitmapFont* font) { return font->height; }
void SetFontHeight(BitmapFont* font, s32 height) { font->height = height; }

s32 CharWidth(const BitmapFont* font, int character) {
    return font->glyphs[static_cast<unsigned char>(character)].w;
}

BitmapFont* SetFontColor(const BitmapFont* font, u8 red, u8 green, u8 blue) {
    auto* coloured = new (std::nothrow) BitmapFont;
    if (coloured == nullptr) {
        return nullptr;
    }
    coloured->height = font->height;
    coloured->glyphs = font->glyphs;
    SDL_Surface* source = font->surface;
    SDL_Surface* copy =
        source != nullptr ? SDL_ConvertSurface(source, source->format, source->flags) : nullptr;
    if (copy == nullptr) {
        return coloured;
    }
    u32 key = 0;
    {
        const SurfaceLock sourceLock(source);
        const SurfaceLock copyLock(copy);
        key = keyColour(copy);
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
                PutPixel(copy, x, y,
                         SDL_MapRGB(copy->format, scaled(colour.r, red), scaled(colour.g, green),
                                    scaled(colour.b, blue)));
            }
        }
        printDiagnostic("unlooking...\n");
    }
    SDL_SetColorKey(copy, SDL_SRCCOLORKEY, key);
    coloured->surface = copy;
    return coloured;
}

u32 GetPixel(const SDL_Surface* surface, s32 x, s32 y) {
    if (x < 0) {
        std::puts("x too small in GetPixel!");
    }
    if (x >= surface->w) {
        std::puts("x too big in GetPixel!");
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

void PutPixel(SDL_Surface* surface, s32 x, s32 y, u32 pixel) {
    if (u8* address = pixelInBuffer(surface, x, y)) {
        storePixel(address, surface->format->BytesPerPixel, pixel);
    }
}

}  // namespace tarn
