// Copying between surfaces and filling rectangles: like SDL, but with faster loops for 32-bit pixels.
#include "gui/blits.h"

#include "base/vectors.h"
#include "gui/pixel_access.h"
#include "gui/surface.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr u32 lowChannel = 0x000000FF;
constexpr u32 highChannel = 0x00FF0000;

/// 32 bits, with green in the middle between red and blue.
bool isWholeWords(const SDL_PixelFormat& format) {
    return format.BitsPerPixel == 32 && format.Gmask == 0x0000FF00 &&
           (format.Rmask | format.Bmask) == (lowChannel | highChannel) &&
           (format.Rmask == lowChannel || format.Rmask == highChannel);
}

/// The part of the source that a blit copies, and the distance to the destination.
struct CopiedArea {
    s32 left, top, right, bottom;
    s32 dx, dy;

    bool empty() const { return right <= left || bottom <= top; }
};

void store(const CopiedArea& area, SDL_Rect* place) {
    place->x = static_cast<Sint16>(area.left + area.dx);
    place->y = static_cast<Sint16>(area.top + area.dy);
    place->w = static_cast<Uint16>(area.empty() ? 0 : area.right - area.left);
    place->h = static_cast<Uint16>(area.empty() ? 0 : area.bottom - area.top);
}

/// Clipped to the source and to the destination's clip rectangle.
CopiedArea copiedArea(const SDL_Surface* source, const SDL_Rect* part, const SDL_Surface* destination,
                      const SDL_Rect* place) {
    const SDL_Rect everything{0, 0, static_cast<Uint16>(source->w), static_cast<Uint16>(source->h)};
    const SDL_Rect& from = part != nullptr ? *part : everything;
    const SDL_Rect& clip = destination->clip_rect;
    const s32 dx = (place != nullptr ? place->x : 0) - from.x;
    const s32 dy = (place != nullptr ? place->y : 0) - from.y;
    return {
        .left = std::max({s32{from.x}, 0, clip.x - dx}),
        .top = std::max({s32{from.y}, 0, clip.y - dy}),
        .right = std::min({from.x + from.w, source->w, clip.x + clip.w - dx}),
        .bottom = std::min({from.y + from.h, source->h, clip.y + clip.h - dy}),
        .dx = dx,
        .dy = dy,
    };
}

/// Whether the surface's pixels exist only while it is locked. SDL also requires a lock with SDL_ASYNCBLIT
/// alone, but then the pixels always exist: that lock waits until the display server has read them.
bool needsLock(const SDL_Surface* surface) {
    return surface->offset != 0 || (surface->flags & (SDL_HWSURFACE | SDL_RLEACCEL)) != 0;
}

/// Calls `copyRow` with destination, source and number of pixels for every row of the area.
template <typename CopyRow>
void copyRows(SDL_Surface* source, SDL_Surface* destination, const CopiedArea& area, CopyRow copyRow) {
    const SurfaceLock sourceLock(source, needsLock(source));
    const SurfaceLock destinationLock(destination, needsLock(destination));
    u8* to = pixelInBuffer(destination, area.left + area.dx, area.top + area.dy);
    const u8* from = pixelInBuffer(source, area.left, area.top);
    const bool isInside =
        to != nullptr && from != nullptr &&
        pixelInBuffer(destination, area.right - 1 + area.dx, area.bottom - 1 + area.dy) != nullptr &&
        pixelInBuffer(source, area.right - 1, area.bottom - 1) != nullptr;
    if (!isInside) {
        return;
    }
    for (s32 y = area.top; y < area.bottom; ++y) {
        copyRow(to, from, static_cast<std::size_t>(area.right - area.left));
        to += destination->pitch;
        from += source->pitch;
    }
}

void swapChannels(u8* destination, const u8* source, std::size_t count) {
    withVectors([=](auto) __attribute__((always_inline)) {
        for (std::size_t i = 0; i < count; ++i) {
            const u32 pixel = loadPixel(source + i * 4, 4);
            const u32 swapped = (pixel & lowChannel) << 16 | (pixel & highChannel) >> 16;
            storePixel(destination + i * 4, 4, (pixel & ~(lowChannel | highChannel)) | swapped);
        }
    });
}

/// Skips pixels that equal the key in the bits of `compared`.
void copyBesidesKey(u8* destination, const u8* source, std::size_t count, u32 key, u32 compared) {
    for (std::size_t i = 0; i < count; ++i) {
        const u32 pixel = loadPixel(source + i * 4, 4);
        const u32 old = loadPixel(destination + i * 4, 4);
        storePixel(destination + i * 4, 4, ((pixel ^ key) & compared) == 0 ? old : pixel);
    }
}

/// Copies the parts of a row that differ from `shown`, or the whole row. Returns whether it copied any. Does
/// not read the destination, which may be in the cache of the display server's processor.
bool copyChanges(u8* destination, u8* shown, const u8* source, std::size_t bytes, bool everything) {
    constexpr std::size_t piece = 256;
    bool changed = false;
    for (std::size_t first = 0; first < bytes; first += piece) {
        const std::size_t size = std::min(piece, bytes - first);
        if (everything || std::memcmp(shown + first, source + first, size) != 0) {
            std::memcpy(shown + first, source + first, size);
            std::memcpy(destination + first, source + first, size);
            changed = true;
        }
    }
    return changed;
}

}  // namespace

void blit(SDL_Surface* source, const SDL_Rect* part, SDL_Surface* destination, SDL_Rect* place) {
    const bool wholeWords = source != nullptr && destination != nullptr && source != destination &&
                            isWholeWords(*source->format) && isWholeWords(*destination->format);
    const bool sameOrder = wholeWords && source->format->Rmask == destination->format->Rmask;
    const u32 manner = wholeWords ? source->flags & (SDL_SRCCOLORKEY | SDL_SRCALPHA) : u32{SDL_SRCALPHA};
    if (manner != (sameOrder ? u32{SDL_SRCCOLORKEY} : 0)) {
        SDL_Rect from = part != nullptr ? *part : SDL_Rect{};
        SDL_UpperBlit(source, part != nullptr ? &from : nullptr, destination, place);
        return;
    }
    const CopiedArea area = copiedArea(source, part, destination, place);
    if (!area.empty() && sameOrder) {
        const SDL_PixelFormat& format = *source->format;
        copyRows(source, destination, area, [&format](u8* to, const u8* from, std::size_t count) {
            copyBesidesKey(to, from, count, format.colorkey, ~format.Amask);
        });
    } else if (!area.empty()) {
        copyRows(source, destination, area, swapChannels);
    }
    if (place != nullptr) {
        store(area, place);
    }
}

bool blitChanges(SDL_Surface* source, SDL_Surface* destination, SDL_Rect* place, std::vector<u8>& shown) {
    if (!isWholeWords(*source->format) || !isWholeWords(*destination->format) ||
        source->format->Rmask != destination->format->Rmask ||
        (source->flags & (SDL_SRCCOLORKEY | SDL_SRCALPHA)) != 0) {
        return false;
    }
    const auto bytes = static_cast<std::size_t>(source->h) * source->pitch;
    const bool everything = shown.size() != bytes;
    shown.resize(bytes);
    const CopiedArea area = copiedArea(source, nullptr, destination, place);
    CopiedArea changed = area;
    changed.bottom = changed.top;
    store(changed, place);
    if (area.empty()) {
        return true;
    }
    copyRows(source, destination, area, [&](u8* to, const u8* from, std::size_t count) {
        const auto start = static_cast<std::size_t>(from - static_cast<const u8*>(source->pixels));
        if (copyChanges(to, &shown[start], from, count * 4, everything)) {
            const s32 row = static_cast<s32>(start / source->pitch);
            changed.top = changed.empty() ? row : changed.top;
            changed.bottom = row + 1;
        }
    });
    store(changed, place);
    return true;
}

void fill(SDL_Surface* surface, const SDL_Rect& rectangle, u32 pixel) {
    if (surface->format->BytesPerPixel != 4) {
        SDL_Rect place = rectangle;
        SDL_FillRect(surface, &place, pixel);
        return;
    }
    const SDL_Rect& clip = surface->clip_rect;
    const s32 left = std::max(rectangle.x, clip.x);
    const s32 right = std::min(rectangle.x + rectangle.w, clip.x + clip.w);
    const s32 bottom = std::min(rectangle.y + rectangle.h, clip.y + clip.h);
    if (right <= left) {
        return;
    }
    const SurfaceLock lock(surface, needsLock(surface));
    const auto bytes = static_cast<std::size_t>(right - left) * 4;
    const u8* firstLine = nullptr;  // of which the others are copies
    for (s32 y = std::max(rectangle.y, clip.y); y < bottom; ++y) {
        u8* line = pixelInBuffer(surface, left, y);
        if (line == nullptr) {
            return;
        }
        if (firstLine != nullptr) {
            std::memcpy(line, firstLine, bytes);
            continue;
        }
        for (std::size_t i = 0; i < bytes; i += 4) {
            storePixel(line + i, 4, pixel);
        }
        firstLine = line;
    }
}

}  // namespace tarn
