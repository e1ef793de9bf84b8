// Span filling: the loop over a row's pixels, composed of a colour source (colour_sources.h,
// texel_sources.h), a depth method (depth_methods.h) and a pixel end (pixel_ends.h). All three are chosen
// once per primitive, so the loop does not branch on state.
#pragma once

#include "base/vectors.h"
#include "gs/colour_sources.h"
#include "gs/depth_methods.h"
#include "gs/local_memory.h"
#include "gs/pixel_ends.h"

#include <algorithm>
#include <type_traits>

namespace tarn {

/// Finishes one pixel. If the depth test passes, the depth buffer is updated even if the colour is not
/// stored, and after the colour: a guest's buffers may overlap.
template <typename Depth, typename End>
[[gnu::always_inline]] inline void endPixel(u32& pixel, u32& depthWord, u32 colour, Depth& depth, End& end) {
    if constexpr (!Depth::used) {
        end.write(pixel, colour);
    } else {
        if (depth.passes(depth.value(), depthWord)) {
            end.write(pixel, colour);
            depthWord = depth.value();
        }
        depth.step();
    }
    end.step();
}

/// Fills as many whole vectors of `words` pixels as fit in `count`, and returns how many pixels are left.
template <u32 words, typename Source, typename Depth, typename End>
[[gnu::always_inline]] inline u32 fillVectors(u32* pixels, u32* depths, u32 count, Source& source,
                                              Depth& depth, const End& end) {
    if (count < words) {
        return count;
    }
    typename Source::template Vectors<words> colourVectors(source);
    typename Depth::template Vectors<words> depthVectors(depth);
    const u32 whole = count - count % words;
    for (u32 i = 0; i < whole; i += words) {
        const auto colours = colourVectors.next();
        if constexpr (!Depth::used && std::is_same_v<End, StoreColour>) {
            storeWords(pixels + i, colours);
        } else {
            const auto former = loadWords<words>(pixels + i);
            auto stored = end.stores(colours);
            if constexpr (Depth::used) {
                const auto values = depthVectors.next();
                const auto formerDepths = loadWords<words>(depths + i);
                const auto passed = Depth::passes(values, formerDepths);
                storeWords(depths + i, passed ? values : formerDepths);
                stored &= passed;
            }
            if constexpr (requires { end.count(stored); }) {
                end.count(stored);
            }
            storeWords(pixels + i, stored ? colours : former);
        }
    }
    source.advance(whole);
    depth.advance(whole);
    return count - whole;
}

/// Fills `count` contiguous pixels from left to right. Vectors are used only if no pixel of the run can
/// change what a later one reads.
template <u32 words, typename Source, typename Depth, typename End>
[[gnu::always_inline]] inline void fillRun(u32* memory, u32 pixel, u32 depthWord, u32 count, Source& source,
                                           Depth& depth, End& end) {
    u32* pixels = memory + pixel;
    u32* depths = memory + depthWord;
    if constexpr (Source::fewestForVectors != 0 && End::vectors) {
        if (count >= std::max(Source::fewestForVectors, Depth::fewestForVectors)) {
            const WordRange reads = source.reads(count);
            const WordRange frame{pixel, count};
            const WordRange depthBuffer{depthWord, Depth::used ? count : 0};
            if (!overlap(reads, frame) && !overlap(reads, depthBuffer) && !overlap(frame, depthBuffer)) {
                u32 left = fillVectors<words>(pixels, depths, count, source, depth, end);
                if constexpr (words > 4) {
                    left = fillVectors<4>(pixels + count - left, depths + count - left, left, source, depth,
                                          end);
                }
                pixels += count - left;
                depths += count - left;
                count = left;
            }
        }
    }
    Source s = source;
    Depth d = depth;
    End e = end;
#pragma GCC unroll 4
    for (u32 i = 0; i < count; ++i) {
        endPixel(pixels[i], depths[i], s.colour(), d, e);
        s.step();
    }
    source = s;
    depth = d;
    end = e;
}

/// The buffers that spans go to.
struct SpanTarget {
    u32* memory = Gs.vRamUL();
    u32 frame = Gs.gsfb().fbp;
    u32 depth = Gs.zbuf().zbp;
    u32 width = Gs.gsfb().fbw;
};

/// Fills the pixels of row y from column x on, `words` at a time where possible. The row is split where the
/// frame or the depth buffer crosses the end of local memory, so that the loops need no mask.
template <u32 words, typename Source, typename Depth, typename End>
[[gnu::always_inline]] inline void fillSpan(const SpanTarget& target, s32 x, s32 y, s32 count, Source& source,
                                            Depth& depth, End& end) {
    u32 offset = static_cast<u32>(y) * target.width + static_cast<u32>(x);
    end.start(static_cast<u32>(x), static_cast<u32>(y));
    while (count > 0) {
        const u32 pixel = (target.frame + offset) % localMemoryWords;
        const u32 depthWord = (target.depth + offset) % localMemoryWords;
        u32 run = std::min(static_cast<u32>(count), localMemoryWords - pixel);
        if constexpr (Depth::used) {
            run = std::min(run, localMemoryWords - depthWord);
        }
        fillRun<words>(target.memory, pixel, depthWord, run, source, depth, end);
        offset += run;
        count -= static_cast<s32>(run);
    }
}

}  // namespace tarn
