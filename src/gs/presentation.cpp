// The copies of the displayed rectangle to a host surface: four pixel formats, 1:1 or stretched.
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
    return static_cast<u32>(source - Gs.vRamUL()) + static_cast<u32>(y) * GsHost.picture.stride +
           static_cast<u32>(x);
}

/// Converts `count` words of local memory from `index` on.
template <class HostPixel>
void convertLocal(u8* destination, u32 index, u32 count) {
    forLocalRuns(index, count, [&](const u32* words, u32 first, u32 run) {
        convertPixels<HostPixel>(destination + std::size_t{first} * HostPixel::bytes, words, run);
    });
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
        convertLocal<HostPixel>(line, sourceIndex(source, rectangle.x, rectangle.y + row),
                                static_cast<u32>(columns.count));
    }
}

/// Copies the words of local memory that lie at `columns`, ascending, from `start`.
void gather(u32* samples, u32 start, const u32* columns, u32 count) {
    start &= localMemoryWords - 1;
    if (start + columns[count - 1] < localMemoryWords) {
        const u32* words = Gs.vRamUL() + start;
        for (u32 k = 0; k < count; ++k) {
            samples[k] = words[columns[k]];
        }
    } else {
        for (u32 k = 0; k < count; ++k) {
            samples[k] = localWord(start + columns[k]);
        }
    }
}

/// Steps are 16.16; destination pixel k of a row samples column x + 1 + k × step: the first is never column
/// x. Columns are done in blocks, whose places in a source row are the same for all rows.
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
    std::array<u32, blockSize> columns;
    std::array<u32, blockSize> samples;
    for (s32 block = 0; block < width; block += blockSize) {
        const u32 count = static_cast<u32>(std::min(blockSize, width - block));
        for (u32 k = 0; k < count; ++k) {
            columns[k] = static_cast<u32>((block + s64{k}) * xstep >> 16);
        }
        s64 sampledRow = -1;
        for (s32 row = 0; row < height; ++row) {
            const s64 sourceRow = row * ystep >> 16;
            const u32 start = sourceIndex(source, rectangle.x + 1, rectangle.y + static_cast<s32>(sourceRow));
            u8* line = destination + std::ptrdiff_t{row} * pitch +
                       std::ptrdiff_t{block} * std::ptrdiff_t{HostPixel::bytes};
            if (xstep == 0x10000) {
                convertLocal<HostPixel>(line, start + columns[0], count);
                continue;
            }
            if (sourceRow != sampledRow) {  // a repeated row is there already
                sampledRow = sourceRow;
                gather(samples.data(), start, columns.data(), count);
            }
            convertPixels<HostPixel>(line, samples.data(), count);
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
