// Owns span filling: the loop over a row's pixels, put together from a colour source, a depth method and an
// end for the pixel. All three are chosen once per primitive, so the loop itself branches on no state.
//
// A colour source has colour() of the current pixel, step() to the next one, and constantAlpha: whether
// colour() has the same alpha on every pixel of the primitive, which alpha() gives.
#pragma once

#include "base/bits.h"
#include "gs/local_memory.h"
#include "gs/pixel_writers.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace tarn {

/// The same colour everywhere.
struct FlatColour {
    static constexpr bool constantAlpha = true;
    u32 word = Gs.rgba;

    u32 alpha() const { return word >> 24; }
    u32 colour() const { return word; }
    void step() {}
};

/// Multiplies the channels of a texel with those of a colour: min(255, (texel × colour) >> 7), so 128 is
/// unity.
class TexelModulator {
  public:
    explicit TexelModulator(u32 colour) {
        for (unsigned i = 0; i < factors.size(); ++i) {
            factors[i] = bits(colour, 8 * i, 8);
        }
    }

    u32 apply(u32 texel) const {
        // Four lanes of 16 bits: a product has at most 16, its upper 9 are at most 508.
        u64 lanes = 0;
        for (unsigned i = 0; i < factors.size(); ++i) {
            lanes |= u64{bits(texel, 8 * i, 8) * factors[i]} << (16 * i);
        }
        lanes = (lanes >> 7) & 0x01FF01FF01FF01FF;
        const u64 overflow = (lanes >> 8) & 0x0001000100010001;
        lanes |= (overflow << 8) - overflow;
        lanes &= 0x00FF00FF00FF00FF;
        lanes |= lanes >> 8;
        return static_cast<u32>((lanes & 0xFFFF) | ((lanes >> 16) & 0xFFFF0000));
    }

  private:
    std::array<u32, 4> factors{};
};

// Depth methods.

/// No depth buffer is read or written.
struct NoDepth {
    static constexpr bool used = false;
    static bool passes(u32 /*stored*/) { return true; }
    void step() {}
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
    static void step() {}
};

struct DropColour {
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& /*pixel*/, u32 /*colour*/) {}
    static void step() {}
};

template <AlphaTest test>
struct TestAlpha {
    u32 reference = Gs.test->aref;

    static void start(u32 /*x*/, u32 /*y*/) {}
    void write(u32& pixel, u32 colour) const {
        if (passesAlphaTest(test, colour >> 24, reference)) {
            pixel = colour;
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
    const auto test = Gs.test->ate == 1 ? AlphaTest{Gs.test->atst} : AlphaTest::always;
    if (blendingSelected()) {
        draw(CallWriter{});
    } else if constexpr (Source::constantAlpha) {
        if (passesAlphaTest(test, source.alpha(), Gs.test->aref)) {
            draw(StoreColour{});
        } else {
            draw(DropColour{});
        }
    } else {
        switch (test) {
        case AlphaTest::never:
            return draw(DropColour{});
        case AlphaTest::always:
            return draw(StoreColour{});
        case AlphaTest::less:
            return draw(TestAlpha<AlphaTest::less>{});
        case AlphaTest::lessOrEqual:
            return draw(TestAlpha<AlphaTest::lessOrEqual>{});
        case AlphaTest::equal:
            return draw(TestAlpha<AlphaTest::equal>{});
        case AlphaTest::greaterOrEqual:
            return draw(TestAlpha<AlphaTest::greaterOrEqual>{});
        case AlphaTest::greater:
            return draw(TestAlpha<AlphaTest::greater>{});
        case AlphaTest::notEqual:
            return draw(TestAlpha<AlphaTest::notEqual>{});
        }
    }
}

/// Calls draw(depth) with the method that TEST.ZTST selects, or not at all under NEVER.
template <class Draw>
void withDepthTest(Draw draw) {
    switch (DepthTest{Gs.test->ztst}) {
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

/// Fills `count` pixels that lie in one piece. Strictly from left to right, a pixel's depth after its colour:
/// a guest may lay its buffers and textures over each other. A pixel that the depth test lets through
/// updates the depth buffer whatever becomes of its colour.
template <class Source, class Depth, class End>
inline void fillRun(u32* pixels, u32* depths, u32 count, Source& source, Depth& depth, End& end) {
    if constexpr (std::is_same_v<End, StoreColour> && !Depth::used && std::is_base_of_v<FlatColour, Source>) {
        std::fill_n(pixels, count, source.colour());
        return;
    }
    Source s = source;
    Depth d = depth;
    End e = end;
    for (u32 i = 0; i < count; ++i) {
        if constexpr (Depth::used) {
            if (d.passes(depths[i])) {
                e.write(pixels[i], s.colour());
                depths[i] = d.value();
            }
        } else {
            e.write(pixels[i], s.colour());
        }
        s.step();
        d.step();
        e.step();
    }
    source = s;
    depth = d;
    end = e;
}

/// Fills the pixels of row y from column x on. The row is cut where the frame or the depth buffer passes the
/// end of local memory, so that the loops need no mask.
template <class Source, class Depth, class End>
inline void fillSpan(s32 x, s32 y, s32 count, Source& source, Depth& depth, End& end) {
    const auto wordsToEnd = [](u32 index) { return localMemoryWords - (index & (localMemoryWords - 1)); };
    u32 offset = static_cast<u32>(y) * Gs.gsfb->fbw + static_cast<u32>(x);
    end.start(static_cast<u32>(x), static_cast<u32>(y));
    for (s32 left = count; left > 0;) {
        u32 run = std::min(static_cast<u32>(left), wordsToEnd(Gs.gsfb->fbp + offset));
        if constexpr (Depth::used) {
            run = std::min(run, wordsToEnd(Gs.zbuf->zbp + offset));
        }
        fillRun(&fBufUL(offset), &zBufUL(offset), run, source, depth, end);
        offset += run;
        left -= static_cast<s32>(run);
    }
}

}  // namespace tarn
