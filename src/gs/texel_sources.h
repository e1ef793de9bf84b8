// Colour sources with a texture of 32-bit words. Texels are neither wrapped nor clamped to the texture.
#pragma once

#include "gs/colour_sources.h"

#include <algorithm>

namespace tarn {

/// Multiplies the channels of texels by those of a colour: min(255, (texel × colour) >> 7), so 128 is unity.
class TexelModulator {
  public:
    explicit TexelModulator(u32 colour) : even(colour & 0x00FF00FF), odd((colour >> 8) & 0x00FF00FF) {}

    u32 apply(u32 texel) const { return Vectors<4>(*this).apply(WordVector<4>{texel})[0]; }

    template <u32 count>
    class Vectors {
      public:
        [[gnu::always_inline]] explicit Vectors(const TexelModulator& modulator)
            : even(widen(modulator.even)), odd(widen(modulator.odd)) {}

        [[gnu::always_inline]] WordVector<count> apply(const WordVector<count>& texels) const {
            const auto words = bitCast<Channels>(texels);
            return bitCast<WordVector<count>>(multiply(words & 0xFF, even) | multiply(words >> 8, odd) << 8);
        }

      private:
        using Channels = typename VectorTypes<count>::Halves;
        using Signed = typename VectorTypes<count>::SignedHalves;

        [[gnu::always_inline]] static Channels widen(u32 pair) {
            return bitCast<Channels>(pair + WordVector<count>{});
        }
        /// The comparison is signed because every processor has that one; the product is at most 508.
        [[gnu::always_inline]] static Channels multiply(const Channels& texel, const Channels& colour) {
            const auto product = bitCast<Signed>((texel * colour) >> 7);
            const Signed most = Signed{} + 255;
            return bitCast<Channels>(product < most ? product : most);
        }

        Channels even;
        Channels odd;
    };

  private:
    u32 even;  ///< red and blue, in bits 0-7 and 16-23
    u32 odd;   ///< green and alpha
};

/// The integer parts of 16.16 values, sign-extended.
template <u32 count>
[[gnu::always_inline]] inline WordVector<count> integerParts(const WordVector<count>& values) {
    using Signed = typename VectorTypes<count>::SignedWords;
    return bitCast<WordVector<count>>(bitCast<Signed>(values) >> 16);
}

/// Fetches texels one by one.
template <u32 count>
[[gnu::always_inline]] inline WordVector<count> fetch(const u32* memory, const WordVector<count>& indexes) {
    WordVector<count> texels = {};
    for (u32 i = 0; i < count; ++i) {
        texels[i] = memory[indexes[i]];
    }
    return texels;
}

/// The nearest texel by truncation, as a 32-bit word whatever the texture's format.
struct DecalSource {
    static constexpr bool constantAlpha = false;
    static constexpr u32 fewestForVectors = 16;
    const u32* memory = Gs.vRamUL();
    u32 base = Gs.tex0().tbp0;
    u32 stride = Gs.tex0().tbw;
    u32 u = 0, v = 0;
    u32 deltaU = 0, deltaV = 0;

    void startTriangle(const TriangleEdges& edges) {
        deltaU = static_cast<u32>(edges.delta_right_u);
        deltaV = static_cast<u32>(edges.delta_right_v);
    }
    void startRow(const TriangleEdges& edges, u32 skipped) {
        u = static_cast<u32>(edges.left_u);
        v = static_cast<u32>(edges.left_v);
        advance(skipped);
    }
    u32 colour() const {
        const u32 column = static_cast<u32>(static_cast<s32>(u) >> 16);
        const u32 row = static_cast<u32>(static_cast<s32>(v) >> 16);
        return memory[(base + row * stride + column) % localMemoryWords];
    }
    void step() { advance(1); }
    void advance(u32 count) {
        u += count * deltaU;
        v += count * deltaV;
    }

    /// From the lowest to the highest texel of the rectangle that the walk covers.
    WordRange reads(u32 count) const {
        const s64 lastU = static_cast<s32>(u) + s64{static_cast<s32>(deltaU)} * (count - 1);
        const s64 lastV = static_cast<s32>(v) + s64{static_cast<s32>(deltaV)} * (count - 1);
        if (lastU != wrapTo32(lastU) || lastV != wrapTo32(lastV)) {
            return {0, localMemoryWords};
        }
        const auto [left, right] = std::minmax({s64{static_cast<s32>(u) >> 16}, lastU >> 16});
        const auto [top, bottom] = std::minmax({s64{static_cast<s32>(v) >> 16}, lastV >> 16});
        return wordRange(static_cast<u32>(base + top * stride + left),
                         (bottom - top) * stride + right - left + 1);
    }

    template <u32 count>
    struct Vectors {
        using Words = WordVector<count>;
        const DecalSource& walk;
        Words u = steppedWords<count>(walk.u, walk.deltaU);
        Words v = steppedWords<count>(walk.v, walk.deltaV);
        Words rows = walk.base + integerParts<count>(v) * walk.stride;

        [[gnu::always_inline]] explicit Vectors(const DecalSource& source) : walk(source) {}
        [[gnu::always_inline]] Words next() {
            const Words indexes = (rows + integerParts<count>(u)) % localMemoryWords;
            u += count * walk.deltaU;
            if (walk.deltaV != 0) {  // upright rectangles, the most frequent case, stay on one texel row
                v += count * walk.deltaV;
                rows = walk.base + integerParts<count>(v) * walk.stride;
            }
            return fetch<count>(walk.memory, indexes);
        }
    };
};

/// The texel times the flat colour, its alpha 0.
struct ModulateSource : DecalSource {
    static constexpr bool constantAlpha = true;
    TexelModulator modulator{Gs.rgba & 0xFFFFFF};

    static u32 alpha() { return 0; }
    u32 colour() const { return modulator.apply(DecalSource::colour()); }

    template <u32 count>
    struct Vectors : DecalSource::Vectors<count> {
        TexelModulator::Vectors<count> modulator;

        [[gnu::always_inline]] explicit Vectors(const ModulateSource& source)
            : DecalSource::Vectors<count>(source), modulator(source.modulator) {}
        [[gnu::always_inline]] WordVector<count> next() {
            return modulator.apply(DecalSource::Vectors<count>::next());
        }
    };
};

/// The source of sprites, one texel per pixel. Always modulates, alpha included.
struct TexelRowSource {
    static constexpr bool constantAlpha = false;
    static constexpr u32 fewestForVectors = 4;
    TexelModulator modulator{Gs.rgba};
    const u32* memory = Gs.vRamUL();
    u32 base = Gs.tex0().tbp0;
    u32 stride = Gs.tex0().tbw;
    u32 index = 0;

    /// Returns false for a row that starts beyond local memory, which ends the sprite. A row that starts
    /// exactly at the end is still drawn.
    bool startRow(s32 u, s32 v) {
        const u32 row = base + static_cast<u32>(v) * stride;
        index = row + static_cast<u32>(u);
        return row <= localMemoryWords;
    }
    u32 colour() const { return modulator.apply(memory[index % localMemoryWords]); }
    void step() { ++index; }
    void advance(u32 count) { index += count; }

    /// All of local memory if the texels wrap at its end, so that no vectors are used.
    WordRange reads(u32 count) const {
        const bool wraps = index % localMemoryWords + count > localMemoryWords;
        return wraps ? WordRange{0, localMemoryWords} : WordRange{index, count};
    }

    template <u32 count>
    struct Vectors {
        const u32* texels;
        TexelModulator::Vectors<count> modulator;

        [[gnu::always_inline]] explicit Vectors(const TexelRowSource& source)
            : texels(source.memory + source.index % localMemoryWords), modulator(source.modulator) {}
        [[gnu::always_inline]] WordVector<count> next() {
            const auto colours = modulator.apply(loadWords<count>(texels));
            texels += count;
            return colours;
        }
    };
};

}  // namespace tarn
