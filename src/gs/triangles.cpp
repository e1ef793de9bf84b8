// Owns the eight triangle routines: colour sources that follow the edge walk, and the rows filled from them.
#include "gs/drawing.h"
#include "gs/local_memory.h"
#include "gs/spans.h"
#include "gs/triangle_setup.h"

namespace tarn {
namespace {

/// Flat colour, as a triangle's source.
struct FlatSource : FlatColour {
    void startRow(const TriangleEdges& /*edges*/, u32 /*skipped*/) {}
};

/// The three channels interpolated, fractions dropped; alpha is not interpolated and stays 0.
struct GouraudSource {
    static constexpr bool constantAlpha = true;
    u32 R = 0, G = 0, B = 0;
    u32 deltaR = 0, deltaG = 0, deltaB = 0;

    void startRow(const TriangleEdges& edges, u32 skipped) {
        deltaR = static_cast<u32>(edges.delta_right_R);
        deltaG = static_cast<u32>(edges.delta_right_G);
        deltaB = static_cast<u32>(edges.delta_right_B);
        R = static_cast<u32>(edges.left_R) + skipped * deltaR;
        G = static_cast<u32>(edges.left_G) + skipped * deltaG;
        B = static_cast<u32>(edges.left_B) + skipped * deltaB;
    }
    static u32 alpha() { return 0; }
    u32 colour() const { return (R & 0xFF0000) | ((G >> 8) & 0xFF00) | ((B >> 16) & 0xFF); }
    void step() {
        R += deltaR;
        G += deltaG;
        B += deltaB;
    }
};

/// The nearest texel by truncation, as it is. Texels are 32-bit words whatever the texture's format, neither
/// wrapped nor clamped to the texture.
struct DecalSource {
    static constexpr bool constantAlpha = false;
    const u32* memory = Gs.vRamUL;
    u32 base = Gs.tex0->tbp0;
    u32 stride = Gs.tex0->tbw;
    s32 u = 0, v = 0;
    s32 deltaU = 0, deltaV = 0;

    void startRow(const TriangleEdges& edges, u32 skipped) {
        deltaU = edges.delta_right_u;
        deltaV = edges.delta_right_v;
        u = wrapTo32(edges.left_u + s64{skipped} * deltaU);
        v = wrapTo32(edges.left_v + s64{skipped} * deltaV);
    }
    u32 colour() const {
        const u32 index = base + static_cast<u32>(v >> 16) * stride + static_cast<u32>(u >> 16);
        return memory[index & (localMemoryWords - 1)];
    }
    void step() {
        u = wrapTo32(s64{u} + deltaU);
        v = wrapTo32(s64{v} + deltaV);
    }
};

/// The texel times the flat colour, 128 being unity; alpha stays 0.
struct ModulateSource : DecalSource {
    static constexpr bool constantAlpha = true;
    TexelModulator modulator{Gs.rgba & 0xFFFFFF};

    static u32 alpha() { return 0; }
    u32 colour() const { return modulator.apply(DecalSource::colour()); }
};

template <TriangleVariant variant, class Source, class Depth, class End>
void fillRows(TriangleEdges& edges, s32 row, Source source, Depth depth, End end) {
    const s32 firstColumn = static_cast<s32>(Gs.scissor->scax0);
    const s32 lastColumn = static_cast<s32>(Gs.scissor->scax1) + (variant.flat() ? 1 : 0);
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
        fillSpan(first, row, last - first + 1, source, depth, end);
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
    s32 row = edges.Ymin;
    for (; row < static_cast<s32>(Gs.scissor->scay0); ++row) {
        if (NextRow<variant>(edges)) {
            return;
        }
    }
    const Source source{};
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
