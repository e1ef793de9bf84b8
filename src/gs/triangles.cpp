// The eight triangle routines: colour sources that follow the edge walk, and the rows filled from them.
#include "gs/drawing.h"
#include "gs/spans.h"
#include "gs/triangle_setup.h"

#include <algorithm>
#include <type_traits>

namespace tarn {
namespace {

/// Flat colour, as a triangle's source.
struct FlatSource : FlatColour {
    static void startTriangle(const TriangleEdges& /*edges*/) {}
    static void startRow(const TriangleEdges& /*edges*/, u32 /*skipped*/) {}
};

/// The three channels interpolated, fractions dropped; alpha is not interpolated and stays 0.
struct GouraudSource {
    static constexpr bool constantAlpha = true;
    static constexpr u32 wideFrom = 4;
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
    template <class Word>
    static Word pack(Word r, Word g, Word b) {
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

    struct Quads {
        Lanes r, g, b;
        u32 stepR, stepG, stepB;

        explicit Quads(const GouraudSource& source)
            : r(laneValues(source.R, source.deltaR)), g(laneValues(source.G, source.deltaG)),
              b(laneValues(source.B, source.deltaB)), stepR(4 * source.deltaR), stepG(4 * source.deltaG),
              stepB(4 * source.deltaB) {}
        Lanes next() {
            const Lanes colours = pack(r, g, b);
            r += stepR;
            g += stepG;
            b += stepB;
            return colours;
        }
    };
};

/// The nearest texel by truncation, as it is. Texels are 32-bit words whatever the texture's format, neither
/// wrapped nor clamped to the texture.
struct DecalSource {
    static constexpr bool constantAlpha = false;
    static constexpr u32 wideFrom = 16;
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

    /// From the lowest to the highest texel of the rectangle that the walk goes through.
    WordRange reads(u32 count) const {
        const s64 lastU = static_cast<s32>(u) + s64{static_cast<s32>(deltaU)} * (count - 1);
        const s64 lastV = static_cast<s32>(v) + s64{static_cast<s32>(deltaV)} * (count - 1);
        if (lastU != wrapTo32(lastU) || lastV != wrapTo32(lastV)) {
            return {0, localMemoryWords};
        }
        const auto [left, right] = std::minmax({s64{static_cast<s32>(u) >> 16}, lastU >> 16});
        const auto [top, bottom] = std::minmax({s64{static_cast<s32>(v) >> 16}, lastV >> 16});
        const s64 extent = (bottom - top) * stride + right - left + 1;
        return {static_cast<u32>(base + top * stride + left),
                static_cast<u32>(std::min<s64>(extent, localMemoryWords))};
    }

    struct Quads {
        const DecalSource& walk;
        Lanes u = laneValues(walk.u, walk.deltaU);
        Lanes v = laneValues(walk.v, walk.deltaV);
        Lanes rows = walk.base + integerParts(v) * walk.stride;

        explicit Quads(const DecalSource& source) : walk(source) {}
        Lanes next() {
            const Lanes indexes = (rows + integerParts(u)) % localMemoryWords;
            u += 4 * walk.deltaU;
            if (walk.deltaV != 0) {  // upright rectangles, the most frequent case, stay on their texel row
                v += 4 * walk.deltaV;
                rows = walk.base + integerParts(v) * walk.stride;
            }
            return fetch(walk.memory, indexes);
        }
    };
};

/// The texel times the flat colour, its alpha 0.
struct ModulateSource : DecalSource {
    static constexpr bool constantAlpha = true;
    TexelModulator modulator{Gs.rgba & 0xFFFFFF};

    static u32 alpha() { return 0; }
    u32 colour() const { return modulator.apply(DecalSource::colour()); }

    struct Quads : DecalSource::Quads {
        TexelModulator modulator;

        explicit Quads(const ModulateSource& source)
            : DecalSource::Quads(source), modulator(source.modulator) {}
        Lanes next() { return modulator.apply(DecalSource::Quads::next()); }
    };
};

template <TriangleVariant variant, class Source, class Depth, class End>
void fillRows(TriangleEdges& edges, s32 row, Source source, Depth depth, End end) {
    const SpanTarget target;
    const s32 firstColumn = static_cast<s32>(Gs.scissor().scax0);
    const s32 lastColumn = static_cast<s32>(Gs.scissor().scax1) + (variant.flat() ? 1 : 0);
    for (; row <= edges.Ymax; ++row) {
        s32 first = edges.left_x >> 16;
        const s32 last = std::min((edges.right_x >> 16) - 1, lastColumn);
        const u32 skipped = first < firstColumn ? static_cast<u32>(firstColumn - first) : 0;
        first = std::max(first, firstColumn);
        source.startRow(edges, skipped);
        if constexpr (variant.depth) {
            depth.delta = static_cast<u64>(edges.delta_right_z);
            depth.z = static_cast<u64>(edges.left_z);
            if constexpr (!variant.flat()) {  // the flat variant does not advance its depth
                depth.z += skipped * depth.delta;
            }
        }
        fillSpan(target, first, row, last - first + 1, source, depth, end);
        if (NextRow<variant>(edges)) {
            return;
        }
    }
}

template <TriangleVariant variant, class Source>
void drawTriangle(const GsVertex* vertices) {
    TriangleEdges edges;
    if (!SetupSections<variant>(edges, vertices)) {
        return;
    }
    const auto& [a, b, c] = edges.vtx;
    countWork((std::max({a.x, b.x, c.x}) - std::min({a.x, b.x, c.x})) >> 16, edges.Ymax - edges.Ymin + 1);
    s32 row = edges.Ymin;
    for (; row < static_cast<s32>(Gs.scissor().scay0); ++row) {
        if (NextRow<variant>(edges)) {
            return;
        }
    }
    Source source;
    source.startTriangle(edges);
    withPixelEnd(source, [&](auto end) {
        if constexpr (variant.depth) {
            withDepthTest([&](auto depth) { fillRows<variant>(edges, row, source, depth, end); });
        } else if constexpr (!std::is_same_v<decltype(end), DropColour>) {
            fillRows<variant>(edges, row, source, NoDepth{}, end);
        }
    });
}

}  // namespace

void drawTriangleF(const GsVertex* vertices) { drawTriangle<variantF, FlatSource>(vertices); }
void drawTriangleF_Z(const GsVertex* vertices) { drawTriangle<variantF_Z, FlatSource>(vertices); }
void drawTriangleG(const GsVertex* vertices) { drawTriangle<variantG, GouraudSource>(vertices); }
void drawTriangleFTDecal(const GsVertex* vertices) { drawTriangle<variantFT, DecalSource>(vertices); }
void drawTriangleFTModulate(const GsVertex* vertices) { drawTriangle<variantFT, ModulateSource>(vertices); }
void drawTriangleFTDecal_Z(const GsVertex* vertices) { drawTriangle<variantFT_Z, DecalSource>(vertices); }
void drawTriangleFTModulate_Z(const GsVertex* vertices) {
    drawTriangle<variantFT_Z, ModulateSource>(vertices);
}
void drawTriangleGT(const GsVertex* vertices) { drawTriangle<variantGT, DecalSource>(vertices); }

}  // namespace tarn
