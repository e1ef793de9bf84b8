// Span filling: the loop over a row's pixels, put together from a colour source, a depth method and an
// end for the pixel. All three are chosen once per primitive, so the loop itself branches on no state.
//
// A colour source stands on a pixel of a row. It has
//   colour(), step()   the pixel's colour, and the move to the next pixel,
//   constantAlpha      whether all pixels of the primitive have the alpha that alpha() gives.
// A wide source can also work out four pixels at a time, if that is known not to change what it reads:
//   reads(count)       the words of local memory that the next `count` colours depend on,
//   Quads              made from the source, gives the colours of four pixels by next(),
//   advance(count)     moves `count` pixels on.
#pragma once

#include "gs/gs.h"
#include "gs/local_memory.h"
#include "gs/pixel_writers.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace tarn {

// Four pixels at a time.
using Lanes = u32 __attribute__((vector_size(16)));

/// The values of four pixels in a row.
inline Lanes laneValues(u32 first, u32 delta) {
    constexpr Lanes number = {0, 1, 2, 3};
    return first + number * delta;
}

/// The integer parts of four 16.16 values, sign-extended.
inline Lanes integerParts(Lanes values) {
    using SignedLanes = s32 __attribute__((vector_size(16)));
    return std::bit_cast<Lanes>(std::bit_cast<SignedLanes>(values) >> 16);
}

/// Multiplies the channels of texels with those of a colour: min(255, (texel × colour) >> 7), so 128 is
/// unity.
class TexelModulator {
  public:
    explicit TexelModulator(u32 colour)
        : even(widen(colour & 0x00FF00FF)), odd(widen((colour >> 8) & 0x00FF00FF)) {}

    u32 apply(u32 texel) const { return apply(Lanes{texel})[0]; }
    Lanes apply(Lanes texels) const {
        const auto words = std::bit_cast<Channels>(texels);
        return std::bit_cast<Lanes>((multiply(words & 0xFF, even) & 0xFF) | multiply(words >> 8, odd) << 8);
    }

  private:
    using Channels = u16 __attribute__((vector_size(16)));

    static Channels widen(u32 pair) { return std::bit_cast<Channels>(Lanes{pair, pair, pair, pair}); }
    /// Right in the lower eight bits only: they are all set where the product, at most 508, is too large.
    /// (The comparison is signed, since processors have no other for these lanes.)
    static Channels multiply(Channels texel, Channels colour) {
        using Signed = s16 __attribute__((vector_size(16)));
        const auto product = std::bit_cast<Signed>((texel * colour) >> 7);
        return std::bit_cast<Channels>(product | (product > 255));
    }

    Channels even;  ///< bits 0-7 and 16-23
    Channels odd;   ///< bits 8-15 and 24-31
};

/// The same colour everywhere.
struct FlatColour {
    static constexpr bool constantAlpha = true;
    static constexpr u32 wideFrom = 4;
    u32 word = Gs.rgba;

    u32 alpha() const { return word >> 24; }
    u32 colour() const { return word; }
    static void step() {}
    static WordRange reads(u32 /*count*/) { return {}; }
    static void advance(u32 /*count*/) {}

    struct Quads {
        Lanes words;

        explicit Quads(const FlatColour& source) : words(source.word + Lanes{}) {}
        Lanes next() const { return words; }
    };
};

/// Fetches four texels.
inline Lanes fetch(const u32* memory, Lanes indexes) {
    return Lanes{memory[indexes[0]], memory[indexes[1]], memory[indexes[2]], memory[indexes[3]]};
}

// Depth methods.

/// No depth buffer is read or written.
struct NoDepth {
    static constexpr bool used = false;
};

/// Depth as z × 65536 and its step a pixel, both wrapping.
template <DepthTest test>
struct SteppedDepth {
    static constexpr bool used = true;
    u64 z = 0;
    u64 delta = 0;

    u32 value() const { return static_cast<u32>(z >> 16); }
    bool passes(u32 stored) const {
        if constexpr (test == DepthTest::greaterOrEqual) {
            return value() >= stored;
        } else if constexpr (test == DepthTest::greater) {
            return value() > stored;
        } else {
            return test == DepthTest::always;
        }
    }
    void step() { z += delta; }
};

// Ends of a pixel.

struct StoreColour {
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& pixel, u32 colour) { pixel = colour; }
    static void storeAll(u32* pixels, const Lanes& colours) {
        std::memcpy(pixels, &colours, sizeof(colours));
    }
    static void step() {}
};

struct StoreAndCount {
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& pixel, u32 colour) {
        pixel = colour;
        ++pixelsWritten;
    }
    static void storeAll(u32* pixels, const Lanes& colours) {
        StoreColour::storeAll(pixels, colours);
        pixelsWritten += sizeof(colours) / sizeof(u32);
    }
    static void step() {}
};

struct DropColour {
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& /*pixel*/, u32 /*colour*/) {}
    static void step() {}
};

template <AlphaTest test, class Store>
struct TestAlpha {
    u32 reference = Gs.test().aref;

    static void start(u32 /*x*/, u32 /*y*/) {}
    void write(u32& pixel, u32 colour) const {
        if (passesAlphaTest(test, colour >> 24, reference)) {
            Store::write(pixel, colour);
        }
    }
    static void step() {}
};

/// Whatever writer has been selected; the way of blended pixels.
struct CallWriter {
    u32 column = 0;
    u32 row = 0;

    void start(u32 x, u32 y) {
        column = x;
        row = y;
    }
    void write(u32& /*pixel*/, u32 colour) const { drawPixel(column, row, colour); }
    void step() { ++column; }
};

/// Calls draw(end) with the end that TEST and blending give the pixels of a source, and selects drawPixel.
template <class Source, class Draw>
void withPixelEnd(const Source& source, Draw draw) {
    selectPixelWriter();
    const auto test = Gs.test().ate == 1 ? AlphaTest{Gs.test().atst} : AlphaTest::always;
    const auto store = [&] {
        if (pixelsAreCounted()) {
            draw(StoreAndCount{});
        } else {
            draw(StoreColour{});
        }
    };
    if (blendingSelected()) {
        draw(CallWriter{});
    } else if constexpr (Source::constantAlpha) {
        if (passesAlphaTest(test, source.alpha(), Gs.test().aref)) {
            store();
        } else {
            draw(DropColour{});
        }
    } else {
        const auto tested = [&]<AlphaTest kind>() {
            if (pixelsAreCounted()) {
                draw(TestAlpha<kind, StoreAndCount>{});
            } else {
                draw(TestAlpha<kind, StoreColour>{});
            }
        };
        switch (test) {
        case AlphaTest::never:
            return draw(DropColour{});
        case AlphaTest::always:
            return store();
        case AlphaTest::less:
            return tested.template operator()<AlphaTest::less>();
        case AlphaTest::lessOrEqual:
            return tested.template operator()<AlphaTest::lessOrEqual>();
        case AlphaTest::equal:
            return tested.template operator()<AlphaTest::equal>();
        case AlphaTest::greaterOrEqual:
            return tested.template operator()<AlphaTest::greaterOrEqual>();
        case AlphaTest::greater:
            return tested.template operator()<AlphaTest::greater>();
        case AlphaTest::notEqual:
            return tested.template operator()<AlphaTest::notEqual>();
        }
    }
}

/// Calls draw(depth) with the method that TEST.ZTST selects, or not at all under NEVER.
template <class Draw>
void withDepthTest(Draw draw) {
    switch (DepthTest{Gs.test().ztst}) {
    case DepthTest::never:
        return;
    case DepthTest::always:
        return draw(SteppedDepth<DepthTest::always>{});
    case DepthTest::greaterOrEqual:
        return draw(SteppedDepth<DepthTest::greaterOrEqual>{});
    case DepthTest::greater:
        return draw(SteppedDepth<DepthTest::greater>{});
    }
}

/// Ends one pixel. A pixel that the depth test lets through updates the depth buffer whatever becomes of its
/// colour, and after it: a guest may lay its buffers over each other.
template <class Depth, class End>
inline void endPixel(u32& pixel, u32& depthWord, u32 colour, Depth& depth, End& end) {
    if constexpr (!Depth::used) {
        end.write(pixel, colour);
    } else {
        if (depth.passes(depthWord)) {
            end.write(pixel, colour);
            depthWord = depth.value();
        }
        depth.step();
    }
    end.step();
}

/// Fills `count` pixels that lie in one piece, from left to right. Colours are worked out four at a time only
/// where no pixel of the run can change a texel of a later one.
template <class Source, class Depth, class End>
inline void fillRun(u32* memory, u32 pixel, u32 depthWord, u32 count, Source& source, Depth& depth,
                    End& end) {
    u32* pixels = memory + pixel;
    u32* depths = memory + depthWord;
    Depth d = depth;
    End e = end;
    u32 i = 0;
    if constexpr (Source::wideFrom != 0)
        if (count >= Source::wideFrom) {
            const WordRange reads = source.reads(count);
            if (!overlap(reads, {pixel, count}) && !(Depth::used && overlap(reads, {depthWord, count}))) {
                typename Source::Quads quads(source);
                for (; count - i >= 4; i += 4) {
                    const Lanes colours = quads.next();
                    if constexpr (requires { End::storeAll(pixels, colours); } && !Depth::used) {
                        End::storeAll(&pixels[i], colours);
                    } else {
                        endPixel(pixels[i], depths[i], colours[0], d, e);
                        endPixel(pixels[i + 1], depths[i + 1], colours[1], d, e);
                        endPixel(pixels[i + 2], depths[i + 2], colours[2], d, e);
                        endPixel(pixels[i + 3], depths[i + 3], colours[3], d, e);
                    }
                }
                source.advance(i);
            }
        }
    Source s = source;
#pragma GCC unroll 4
    for (; i < count; ++i) {
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

/// Fills the pixels of row y from column x on. The row is cut where the frame or the depth buffer passes the
/// end of local memory, so that the loops need no mask.
template <class Source, class Depth, class End>
inline void fillSpan(const SpanTarget& target, s32 x, s32 y, s32 count, Source& source, Depth& depth,
                     End& end) {
    u32 offset = static_cast<u32>(y) * target.width + static_cast<u32>(x);
    end.start(static_cast<u32>(x), static_cast<u32>(y));
    while (count > 0) {
        const u32 pixel = (target.frame + offset) % localMemoryWords;
        const u32 depthWord = (target.depth + offset) % localMemoryWords;
        u32 run = std::min(static_cast<u32>(count), localMemoryWords - pixel);
        if constexpr (Depth::used) {
            run = std::min(run, localMemoryWords - depthWord);
        }
        fillRun(target.memory, pixel, depthWord, run, source, depth, end);
        offset += run;
        count -= static_cast<s32>(run);
    }
}

}  // namespace tarn
