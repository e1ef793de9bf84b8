// Copying the displayed rectangle to a host surface: four pixel formats, 1:1 or stretched.
#include "gs/display.h"
#include "gs/host_pixels.h"
#include "gs/local_memory.h"

#include <SDL.h>
#include <algorithm>
#include <array>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tarn {
namespace {

/// The part of one axis that is written: it starts at `offset` and is `count` pixels long.
struct Extent {
    s32 offset;
    s32 count;
};

/// A picture `size` pixels long, centred or clipped on an axis `configured` pixels long, of which `actual`
/// exist.
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
template <typename HostPixel>
void convertLocal(u8* destination, u32 index, u32 count) {
    forLocalRuns(index, count, [&](const u32* words, u32 first, u32 run) {
        convertPixels<HostPixel>(destination + std::size_t{first} * HostPixel::bytes, words, run);
    });
}

template <typename HostPixel>
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

/// The columns of a source row that a block of a destination row samples, in ascending order.
struct SampledColumns {
    static constexpr u32 most = 512;
    std::array<u32, most> columns;
    u32 count;
    s64 step;  ///< 16.16
};

using Samples = std::array<u32, SampledColumns::most>;

#if defined(__x86_64__)

[[gnu::target("avx2")]] __m256i loadVector(const u32* words) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
}

/// Samples eight columns at a time, any eight of which lie within `reach` words. Returns how many columns it
/// did.
template <u32 reach>
[[gnu::target("avx2")]] u32 sampleVectors(Samples& samples, const u32* row, const SampledColumns& sampled) {
    const auto& columns = sampled.columns;
    u32 k = 0;
    for (; k + 8 <= sampled.count; k += 8) {
        const __m256i first = _mm256_set1_epi32(static_cast<int>(columns[k]));
        const __m256i places = _mm256_sub_epi32(loadVector(&columns[k]), first);
        __m256i words = _mm256_permutevar8x32_epi32(loadVector(row + columns[k]), places);
        if constexpr (reach > 8) {
            const __m256i more = _mm256_permutevar8x32_epi32(loadVector(row + columns[k] + 8), places);
            words = _mm256_blendv_epi8(words, more, _mm256_cmpgt_epi32(places, _mm256_set1_epi32(7)));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(&samples[k]), words);
    }
    return k;
}

#endif

/// Samples the row of local memory that starts at index `start`.
void sample(Samples& samples, u32 start, const SampledColumns& sampled) {
    constexpr u32 reach = 16;  // words that may be read from a sampled one on
    start &= localMemoryWords - 1;
    if (start + sampled.columns[sampled.count - 1] + reach > localMemoryWords) {
        for (u32 k = 0; k < sampled.count; ++k) {
            samples[k] = localWord(start + sampled.columns[k]);
        }
        return;
    }
    const u32* row = Gs.vRamUL() + start;
    u32 k = 0;
#if defined(__x86_64__)
    if (hasWideVectors && sampled.step <= 0x10000) {
        k = sampleVectors<8>(samples, row, sampled);
    } else if (hasWideVectors && sampled.step <= 0x20000) {
        k = sampleVectors<reach>(samples, row, sampled);
    }
#endif
    for (; k < sampled.count; ++k) {
        samples[k] = row[sampled.columns[k]];
    }
}

/// Steps are 16.16. Destination pixel k of a row samples column x + 1 + k × step, so column x itself is never
/// sampled first. Columns are processed in blocks, whose source columns are the same for all rows.
template <typename HostPixel>
void copyStretched(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch) {
    if (!hasDestination()) {
        return;
    }
    const s64 xstep = s64{rectangle.w} * 0x10000 / GsHost.conf.width;
    const s64 ystep = s64{rectangle.h} * 0x10000 / GsHost.conf.height;
    const s32 width = std::min(GsHost.conf.width, GsHost.buffer->w);
    const s32 height = std::min(GsHost.conf.height, GsHost.buffer->h);

    SampledColumns sampled;
    sampled.step = xstep;
    Samples samples;
    for (s32 block = 0; block < width; block += s32{SampledColumns::most}) {
        sampled.count = std::min(SampledColumns::most, static_cast<u32>(width - block));
        for (u32 k = 0; k < sampled.count; ++k) {
            sampled.columns[k] = static_cast<u32>((block + s64{k}) * xstep >> 16);
        }
        s64 sampledRow = -1;
        for (s32 row = 0; row < height; ++row) {
            const s64 sourceRow = row * ystep >> 16;
            const u32 start = sourceIndex(source, rectangle.x + 1, rectangle.y + static_cast<s32>(sourceRow));
            u8* line = destination + std::ptrdiff_t{row} * pitch +
                       std::ptrdiff_t{block} * std::ptrdiff_t{HostPixel::bytes};
            if (xstep == 0x10000) {
                convertLocal<HostPixel>(line, start + sampled.columns[0], sampled.count);
                continue;
            }
            const bool repeated = sourceRow == sampledRow;
            if (repeated && HostPixel::wholePixel) {
                std::memcpy(line, line - pitch, std::size_t{sampled.count} * HostPixel::bytes);
                continue;
            }
            if (!repeated) {
                sampledRow = sourceRow;
                sample(samples, start, sampled);
            }
            convertPixels<HostPixel>(line, samples.data(), sampled.count);
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
