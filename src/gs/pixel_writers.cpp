// The pixel writers: alpha test, store, and the opt-in blending.
#include "gs/pixel_writers.h"

#include "base/bits.h"
#include "gs/gs.h"
#include "gs/local_memory.h"
#include "machine/settings.h"

#include <algorithm>

namespace tarn {
namespace {

// The row stride is the frame's width; every pixel is a whole word whatever the format.
u32& framePixel(u32 x, u32 y) { return fBufUL(y * Gs.gsfb().fbw + x); }

template <AlphaTest test, PixelWriter store = _drawPixel>
void writeTested(u32 x, u32 y, u32 colour) {
    if (alphaRange(test, Gs.test().aref).passes(colour)) {
        store(x, y, colour);
    }
}

void countPixel(u32 x, u32 y, u32 colour) {
    ++pixelsWritten;
    _drawPixel(x, y, colour);
}

template <AlphaTest test>
constexpr PixelWriter counted = writeTested<test, countPixel>;

/// Like drawPixelT, but counting pixels.
constexpr std::array<PixelWriter, 9> countingWriters = {
    countPixel,
    _drawPixelA_F,
    countPixel,
    counted<AlphaTest::Less>,
    counted<AlphaTest::LessOrEqual>,
    counted<AlphaTest::Equal>,
    counted<AlphaTest::GreaterOrEqual>,
    counted<AlphaTest::Greater>,
    counted<AlphaTest::NotEqual>,
};

/// The table from which writers are selected.
const std::array<PixelWriter, 9>* writers = &drawPixelT;

/// The colour that ALPHA.A, B or D selects.
u32 blendInput(u32 select, u32 source, u32 destination) {
    switch (select) {
    case blendSource:
        return source;
    case blendDestination:
        return destination;
    default:
        return 0;
    }
}

/// The factor that ALPHA.C selects; 128 is unity.
s32 blendFactor(const GsAlpha& alpha, u32 source, u32 destination) {
    switch (alpha.c) {
    case factorSource:
        return static_cast<s32>(source >> 24);
    case factorDestination:
        return static_cast<s32>(destination >> 24);
    case factorFixed:
        return static_cast<s32>(alpha.fix);
    default:
        return 0;
    }
}

}  // namespace

void _drawPixel(u32 x, u32 y, u32 colour) { framePixel(x, y) = colour; }

void _drawPixelA_F(u32 /*x*/, u32 /*y*/, u32 /*colour*/) {}
void _drawPixelA_L(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::Less>(x, y, colour); }
void _drawPixelA_LE(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::LessOrEqual>(x, y, colour); }
void _drawPixelA_E(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::Equal>(x, y, colour); }
void _drawPixelA_GE(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::GreaterOrEqual>(x, y, colour); }
void _drawPixelA_G(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::Greater>(x, y, colour); }
void _drawPixelA_NE(u32 x, u32 y, u32 colour) { writeTested<AlphaTest::NotEqual>(x, y, colour); }

const std::array<PixelWriter, 9> drawPixelT = {
    _drawPixel,                                                    // no test
    _drawPixelA_F, _drawPixel,     _drawPixelA_L, _drawPixelA_LE,  // NEVER, ALWAYS, LESS, LEQUAL
    _drawPixelA_E, _drawPixelA_GE, _drawPixelA_G, _drawPixelA_NE,  // EQUAL, GEQUAL, GREATER, NOTEQUAL
};

void _drawPixelBlend(u32 x, u32 y, u32 colour) {
    const GsAlpha& alpha = Gs.alpha();
    const u32 destination = framePixel(x, y);
    const u32 a = blendInput(alpha.a, colour, destination);
    const u32 b = blendInput(alpha.b, colour, destination);
    const u32 d = blendInput(alpha.d, colour, destination);
    const s32 c = blendFactor(alpha, colour, destination);
    u32 result = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const auto channel = [shift](u32 word) { return static_cast<s32>(bits(word, shift, 8)); };
        const s32 value = (((channel(a) - channel(b)) * c) >> 7) + channel(d);
        result |= static_cast<u32>(std::clamp(value, 0, 255)) << shift;
    }
    drawPixel2(x, y, result);  // so an alpha test after blending always sees alpha 0
}

void countPixels(bool on) { writers = on ? &countingWriters : &drawPixelT; }

bool pixelsAreCounted() { return writers != &drawPixelT; }

bool blendingSelected() { return Settings.blend == 1 && Gs.prim().abe == 1; }

void selectPixelWriter() {
    const PixelWriter tested = (*writers)[Gs.test().ate == 1 ? Gs.test().atst + 1 : 0];
    drawPixel = blendingSelected() ? _drawPixelBlend : tested;
    drawPixel2 = tested;
}

}  // namespace tarn
