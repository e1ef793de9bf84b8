// Line drawing on SDL surfaces.
#include "gui/line_drawing.h"

#include "gui/pixel_access.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarn {
namespace {

/// Calls plot(major, minor) for the points of an opaque line, one per step of the major axis.
template <typename Plot>
void walkLine(s64 major, s64 majorEnd, s64 minorStart, s64 minorEnd, s64 majorLimit, Plot plot) {
    const s64 majorDelta = majorEnd - major;
    const s64 step = majorDelta >= 0 ? 1 : -1;
    float slope = 0;
    if (minorEnd != minorStart) {
        slope = static_cast<float>(minorEnd - minorStart) / static_cast<float>(majorDelta);
    } else {
        // Points are computed independently, so those outside the surface can be skipped.
        major = std::clamp<s64>(major, -1, majorLimit);
        majorEnd = std::clamp<s64>(majorEnd, -1, majorLimit);
    }
    slope *= static_cast<float>(step);
    float minor = static_cast<float>(minorStart);
    for (; major != majorEnd + step; major += step) {
        const double rounded = std::floor(static_cast<double>(minor) + 0.5);
        if (major >= 0 && major < majorLimit && rounded >= 0 && rounded < 65536) {
            plot(static_cast<s32>(major), static_cast<s32>(rounded));
        }
        minor += slope;
    }
}

}  // namespace

void SDL_putPixel(SDL_Surface* surface, s32 x, s32 y, u32 colour) {
    if (u8* address = pixelInPicture(surface, x, y)) {
        storePixel(address, surface->format->BytesPerPixel, colour);
    }
}

void SDL_drawLine_Kq(SDL_Surface* surface, s32 x1, s32 y1, s32 x2, s32 y2, u32 colour, u8 /*opacity*/,
                     u8 flags) {
    const bool locks = (flags & lineLocksSurface) != 0 && SDL_MUSTLOCK(surface);
    const bool locked = locks && SDL_LockSurface(surface) == 0;
    if (locks && !locked) {
        std::fprintf(stderr, "Can't lock video surface: %s\n", SDL_GetError());
    }
    if (std::abs(s64{x2} - x1) >= std::abs(s64{y2} - y1)) {
        walkLine(x1, x2, y1, y2, surface->w, [&](s32 x, s32 y) { SDL_putPixel(surface, x, y, colour); });
    } else {
        walkLine(y1, y2, x1, x2, surface->h, [&](s32 y, s32 x) { SDL_putPixel(surface, x, y, colour); });
    }
    if (locked) {
        SDL_UnlockSurface(surface);
    }
}

}  // namespace tarn
