// The rest of the toolkit, which the programs do not call.
#include "gui/toolkit_extras.h"

#include "base/diagnostics.h"
#include "gui/pixel_access.h"

namespace tarn {
namespace {

/// A channel at its place in a pixel, moved by `opacity` / 256 towards the colour's.
u32 blendChannel(u32 old, u32 colour, u32 mask, u8 opacity) {
    const s64 from = old & mask;
    const s64 to = colour & mask;
    return static_cast<u32>(from + (((to - from) * opacity) >> 8)) & mask;
}

u8 blendComponent(u8 from, u8 to, u8 opacity) { return static_cast<u8>(from + (to - from) * opacity / 255); }

}  // namespace

void PutPixel(SDL_Surface* surface, s32 x, s32 y, u32 pixel) {
    if (u8* address = pixelInBuffer(surface, x, y)) {
        storePixel(address, surface->format->BytesPerPixel, pixel);
    }
}

void* SDL_getPixel(SDL_Surface* surface, s32 x, s32 y) { return pixelInPicture(surface, x, y); }

void __slow_SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity) {
    u8* address = pixelInPicture(surface, x, y);
    if (address == nullptr) {
        return;
    }
    SDL_PixelFormat* format = surface->format;
    SDL_Color from{};
    SDL_Color to{};
    SDL_GetRGB(loadPixel(address, format->BytesPerPixel), format, &from.r, &from.g, &from.b);
    SDL_GetRGB(colour, format, &to.r, &to.g, &to.b);
    storePixel(address, format->BytesPerPixel,
               SDL_MapRGB(format, blendComponent(from.r, to.r, opacity),
                          blendComponent(from.g, to.g, opacity), blendComponent(from.b, to.b, opacity)));
}

void SDL_blendPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour, u8 opacity) {
    const SDL_PixelFormat* format = surface->format;
    const u32 size = format->BytesPerPixel;
    if (size == 1) {
        __slow_SDL_blendPixel(surface, x, y, colour, opacity);
    } else if (u8* address = pixelInPicture(surface, x, y)) {
        const u32 old = loadPixel(address, size);
        const bool byBytes = size == 3;
        storePixel(address, size,
                   blendChannel(old, colour, byBytes ? 0xFF : format->Rmask, opacity) |
                       blendChannel(old, colour, byBytes ? 0xFF00 : format->Gmask, opacity) |
                       blendChannel(old, colour, byBytes ? 0xFF0000 : format->Bmask, opacity));
    }
}

void koGUIwidget_printAllText(const koGUIwidget* pane) {
    for (const koGUItextLine* line = pane->textLines; line != nullptr && line->next != nullptr;
         line = line->next) {
        printDiagnostic("-%s-\n", line->text.get());
    }
}

}  // namespace tarn
