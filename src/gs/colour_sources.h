// Colour sources without a texture: one colour, or interpolated channels.
//
// A colour source is positioned on a pixel of a row. It has
//   colour(), step()   the pixel's colour, and the step to the next pixel
//   constantAlpha      whether all pixels of the primitive have the alpha that alpha() returns
//   fewestForVectors   the shortest run for which vectors pay; 0 if the source has none
// A source with vectors also has
//   reads(count)       the words of local memory that the next `count` colours depend on
//   Vectors<count>     made from the source: each next() returns `count` colours
//   advance(count)     moves `count` pixels on
// Sources for triangles also have startTriangle(edges) and startRow(edges, skipped).
#pragma once

#include "base/vectors.h"
#include "gs/local_memory.h"
#include "gs/triangle_setup.h"

namespace tarn {

/// The same colour everywhere.
struct FlatColour {
    static constexpr bool constantAlpha = true;
    static constexpr u32 fewestForVectors = 4;
    u32 word = Gs.rgba;

    static void startTriangle(const TriangleEdges& /*edges*/) {}
    static void startRow(const TriangleEdges& /*edges*/, u32 /*skipped*/) {}
    u32 alpha() const { return word >> 24; }
    u32 colour() const { return word; }
    static void step() {}
    static WordRange reads(u32 /*count*/) { return {}; }
    static void advance(u32 /*count*/) {}

    template <u32 count>
    struct Vectors {
        WordVector<count> words;

        [[gnu::always_inline]] explicit Vectors(const FlatColour& source)
            : words(source.word + WordVector<count>{}) {}
        [[gnu::always_inline]] WordVector<count> next() const { return words; }
    };
};

/// The three channels interpolated, fractions dropped; alpha is not interpolated and stays 0.
struct GouraudSource {
    static constexpr bool constantAlpha = true;
    static constexpr u32 fewestForVectors = 4;
    u32 R = 0, G = 0, B = 0;
    u32 deltaR = 0, deltaG = 0, deltaB = 0;

    void startTriangle(const TriangleEdges& edges) {
        deltaR = static_cast<u32>(edges.delta_right_R);
        deltaG = static_cast<u32>(edges.delta_right_G);
        deltaB = static_cast<u32>(edges.delta_right_B);
    }
    void startRow(const TriangleEdges& edges, u32 skipped) {
        R = static_cast<u32>(edges.left_R);
        G = static_cast<u32>(edges.left_G);
        B = static_cast<u32>(edges.left_B);
        advance(skipped);
    }
    static u32 alpha() { return 0; }
    template <typename Word>
    [[gnu::always_inline]] static Word pack(const Word& r, const Word& g, const Word& b) {
        return (r & 0xFF0000) | ((g >> 8) & 0xFF00) | ((b >> 16) & 0xFF);
    }
    u32 colour() const { return pack(R, G, B); }
    void step() { advance(1); }
    static WordRange reads(u32 /*count*/) { return {}; }
    void advance(u32 count) {
        R += count * deltaR;
        G += count * deltaG;
        B += count * deltaB;
    }

    template <u32 count>
    struct Vectors {
        using Words = WordVector<count>;
        Words r, g, b;
        u32 stepR, stepG, stepB;

        [[gnu::always_inline]] explicit Vectors(const GouraudSource& source)
            : r(steppedWords<count>(source.R, source.deltaR)),
              g(steppedWords<count>(source.G, source.deltaG)),
              b(steppedWords<count>(source.B, source.deltaB)), stepR(count * source.deltaR),
              stepG(count * source.deltaG), stepB(count * source.deltaB) {}
        [[gnu::always_inline]] Words next() {
            const Words colours = pack(r, g, b);
            r += stepR;
            g += stepG;
            b += stepB;
            return colours;
        }
    };
};

}  // namespace tarn
