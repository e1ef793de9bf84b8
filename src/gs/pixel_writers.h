// The pixel writers: alpha test and store, selected once per drawing call.
#pragma once

#include "base/device_codes.h"
#include "machine/machine.h"

#include <array>

namespace tarn {

/// Takes a frame-buffer position that the caller has clipped, and the colour word.
using PixelWriter = void (*)(u32 x, u32 y, u32 colour);

/// The colours that pass an alpha test: those whose alpha (bits 24-31) is in a range, which may wrap from 255
/// to 0.
struct AlphaRange {
    u32 first = 0;            ///< the range's first alpha, in bits 24-31
    u32 extent = 0xFFFFFFFF;  ///< how far a colour may be above it
    bool empty = false;       ///< if so, the other fields are unused

    bool full() const { return extent == 0xFFFFFFFF && !empty; }
    /// For a colour, or for each colour of a vector. The range must not be empty.
    template <typename Words>
    [[gnu::always_inline]] auto contains(const Words& colours) const {
        return colours - first <= extent;
    }
    bool passes(u32 colour) const { return !empty && contains(colour); }
};

/// The range that passes a test against AREF (8 bits).
constexpr AlphaRange alphaRange(AlphaTest test, u32 reference) {
    const auto range = [](u32 low, u32 high) {
        return AlphaRange{.first = low << 24, .extent = (high - low) << 24 | 0xFFFFFF};
    };
    constexpr AlphaRange nothing{.empty = true};
    switch (test) {
    case AlphaTest::Never:
        return nothing;
    case AlphaTest::Always:
        return {};
    case AlphaTest::Less:
        return reference == 0 ? nothing : range(0, reference - 1);
    case AlphaTest::LessOrEqual:
        return range(0, reference);
    case AlphaTest::Equal:
        return range(reference, reference);
    case AlphaTest::GreaterOrEqual:
        return range(reference, 255);
    case AlphaTest::Greater:
        return reference == 255 ? nothing : range(reference + 1, 255);
    case AlphaTest::NotEqual:
        return range(reference + 1, reference + 255);
    }
    return nothing;
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

/// The alpha-test writers: index 0 without a test, else ATST + 1.
extern const std::array<PixelWriter, 9> drawPixelT;

/// The current writer, and the one behind the blending writer.
inline PixelWriter drawPixel = _drawPixel;
inline PixelWriter drawPixel2 = _drawPixel;

/// Sets the writers from TEST and, where blending is switched on, PRIM.ABE.
void selectPixelWriter();

/// Whether pixels of the current primitive go through the blending writer.
bool blendingSelected();

/// Whether pixels are counted, in which case each goes through its writer.
bool pixelsAreCounted();

}  // namespace tarn
