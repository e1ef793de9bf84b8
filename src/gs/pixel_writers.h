// The pixel writers: the alpha test and the store that end a pixel, chosen once per drawing call.
#pragma once

#include "machine/machine.h"

#include <array>

namespace tarn {

/// Takes a frame-buffer position that the caller has clipped, and the colour word.
using PixelWriter = void (*)(u32 x, u32 y, u32 colour);

/// The comparison of a colour's alpha (bits 24-31) with AREF, numbered as TEST.ATST.
enum class AlphaTest : u32 {
    never = 0,
    always = 1,
    less = 2,
    lessOrEqual = 3,
    equal = 4,
    greaterOrEqual = 5,
    greater = 6,
    notEqual = 7,
};

/// The comparison of a pixel's depth with the stored one, numbered as TEST.ZTST.
enum class DepthTest : u32 {
    never = 0,
    always = 1,
    greaterOrEqual = 2,
    greater = 3,
};

constexpr bool passesAlphaTest(AlphaTest test, u32 alpha, u32 reference) {
    switch (test) {
    case AlphaTest::never:
        return false;
    case AlphaTest::always:
        return true;
    case AlphaTest::less:
        return alpha < reference;
    case AlphaTest::lessOrEqual:
        return alpha <= reference;
    case AlphaTest::equal:
        return alpha == reference;
    case AlphaTest::greaterOrEqual:
        return alpha >= reference;
    case AlphaTest::greater:
        return alpha > reference;
    case AlphaTest::notEqual:
        return alpha != reference;
    }
    return false;
}

void _drawPixel(u32 x, u32 y, u32 colour);
void _drawPixelA_F(u32 x, u32 y, u32 colour);
void _drawPixelA_L(u32 x, u32 y, u32 colour);
void _drawPixelA_LE(u32 x, u32 y, u32 colour);
void _drawPixelA_E(u32 x, u32 y, u32 colour);
void _drawPixelA_GE(u32 x, u32 y, u32 colour);
void _drawPixelA_G(u32 x, u32 y, u32 colour);
void _drawPixelA_NE(u32 x, u32 y, u32 colour);

/// Blends the colour with the destination as ALPHA says and hands the result, its alpha 0, to drawPixel2.
void _drawPixelBlend(u32 x, u32 y, u32 colour);

/// The alpha-test writers: 0 without a test, else ATST + 1.
extern const std::array<PixelWriter, 9> drawPixelT;

/// The current writer, and the one behind the blending writer.
inline PixelWriter drawPixel = _drawPixel;
inline PixelWriter drawPixel2 = _drawPixel;

/// Sets the writers from TEST and, where blending is switched on, PRIM.ABE.
void selectPixelWriter();

/// Whether pixels of the current primitive go through the blending writer.
bool blendingSelected();

/// Whether every pixel has to go through its writer, to be counted.
bool pixelsAreCounted();

}  // namespace tarn
