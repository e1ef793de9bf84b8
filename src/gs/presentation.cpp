// Owns the copies of the displayed rectangle to a host surface: four pixel formats, 1:1 or stretched.
#include "gs/display.h"
#include "gs/host_pixels.h"
#include "gs/local_memory.h"

#include <SDL.h>
#include <algorithm>
#include <array>

namespace tarn {
namespace {

/// The part of one axis that is written: it starts at `offset` and is `count` pixels long.
struct Extent {
    s32 offset;
    s32 count;
};

/// A picture `size` pixels long, centred or cut on an axis `configured` long, of which `actual` exist.
Extent placed(s32 size, s32 configured, s32 actual) {
    const s32 length = std::min(size, configured);
    const s32 offset = (configured - length) / 2;
    return {offset, std::min(length, actual - offset)};
}

bool hasDestination() { return GsHost.buffer != nullptr && GsHost.conf.width > 0 && GsHost.conf.height > 0; }

/// The index in local memory of pixel (x, y) of a buffer that starts at `source`.
u32 sourceIndex(const u32* source, s32 x, s32 y) {
    return static_cast<u32>(source - Gs.vRamUL) + static_cast<u32>(y) * Gs.gsdspfb->fbw + static_cast<u32>(x);
}

template <class HostPixel>
void copyPlain(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    if (!hasDestination()) {
        return;
    }
    const Extent columns = placed(rectangle.w, GsHost.conf.width, GsHost.buffer->w);
    const Extent rows = placed(rectangle.h, GsHost.conf.height, GsHost.buffer->h);
    if (columns.count <= 0) {
        return;
    }
    for (s32 row = 0; row < rows.count; ++row) {
        u8* line = destination + std::ptrdiff_t{rows.offset + row} * pitch +
                   std::ptrdiff_t{columns.offset} * std::ptrdiff_t{HostPixel::bytes};
        forLocalRuns(sourceIndex(source, rectangle.x, rectangle.y + row), static_cast<u32>(columns.count),
                     [&](const u32* words, u32 first, u32 run) {
                         convertPixels<HostPixel>(line + std::size_t{first} * HostPixel::bytes, words, run);
                     });
    }
}

/// Steps are 16.16; destination pixel k of a row samples column x + 1 + k × step: the first is never column
/// x. Columns are done in blocks, so that rows which repeat a source row find its samples already gathered.
template <class HostPixel>
void copyStretched(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    if (!hasDestination()) {
        return;
    }
    const s64 xstep = s64{rectangle.w} * 0x10000 / GsHost.conf.width;
    const s64 ystep = s64{rectangle.h} * 0x10000 / GsHost.conf.height;
    const s32 width = std::min(GsHost.conf.width, GsHost.buffer->w);
    const s32 height = std::min(GsHost.conf.height, GsHost.buffer->h);

    constexpr s32 blockSize = 512;
    std::array<u32, blockSize> samples;
    for (s32 block = 0; block < width; block += blockSize) {
        const s32 count = std::min(blockSize, width - block);
        s32 gatheredRow = -1;
        for (s32 row = 0; row < height; ++row) {
            const s32 sourceRow = static_cast<s32>(row * ystep >> 16);
            if (sourceRow != gatheredRow) {
                gatheredRow = sourceRow;
                const u32 start = sourceIndex(source, rectangle.x + 1, rectangle.y + sourceRow);
                s64 position = block * xstep;
                for (s32 k = 0; k < count; ++k) {
                    samples[static_cast<u32>(k)] = localWord(start + static_cast<u32>(position >> 16));
                    position += xstep;
                }
            }
            u8* line = destination + std::ptrdiff_t{row} * pitch +
                       std::ptrdiff_t{block} * std::ptrdiff_t{HostPixel::bytes};
            convertPixels<HostPixel>(line, samples.data(), static_cast<u32>(count));
        }
    }
}

}  // namespace

void ScrBlit15(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyPlain<HostPixel15>(destination, source, rectangle, pitch);
}

void ScrBlit16(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyPlain<HostPixel16>(destination, source, rectangle, pitch);
}

void ScrBlit24(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyPlain<HostPixel24>(destination, source, rectangle, pitch);
}

void ScrBlit32(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyPlain<HostPixel32>(destination, source, rectangle, pitch);
}

void ScrBlit15S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyStretched<HostPixel15>(destination, source, rectangle, pitch);
}

void ScrBlit16S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyStretched<HostPixel16>(destination, source, rectangle, pitch);
}

void ScrBlit24S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyStretched<HostPixel24>(destination, source, rectangle, pitch);
}

void ScrBlit32S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    copyStretched<HostPixel32>(destination, source, rectangle, pitch);
}

}  // namespace tarn
