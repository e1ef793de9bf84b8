// The eight triangle routines: fill the rows of the edge walk from a colour source.
#include "gs/drawing.h"
#include "gs/spans.h"
#include "gs/texel_sources.h"
#include "gs/triangle_setup.h"

#include <algorithm>
#include <type_traits>

namespace tarn {
namespace {

template <TriangleVariant variant, u32 words, typename Source, typename Depth, typename End>
[[gnu::always_inline]] inline void fillRows(TriangleEdges& edges, s32 row, Source source, Depth depth,
                                            End end) {
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
        fillSpan<words>(target, first, row, last - first + 1, source, depth, end);
        if (NextRow<variant>(edges)) {
            return;
        }
    }
}

template <TriangleVariant variant, typename Source>
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
    withPixelEnd(source, [&]<typename End>(End end) {
        const auto fill = [&](auto depth) {
            withVectors([ =, &edges ](auto words) __attribute__((always_inline)) {
                fillRows<variant, words>(edges, row, source, depth, end);
            });
        };
        if constexpr (variant.depth) {
            withDepthTest(fill);
        } else if constexpr (!std::is_same_v<End, DropColour>) {
            fill(NoDepth{});
        }
    });
}

}  // namespace

void drawTriangleF(const GsVertex* vertices) { drawTriangle<variantF, FlatColour>(vertices); }
void drawTriangleF_Z(const GsVertex* vertices) { drawTriangle<variantF_Z, FlatColour>(vertices); }
void drawTriangleG(const GsVertex* vertices) { drawTriangle<variantG, GouraudSource>(vertices); }
void drawTriangleFTDecal(const GsVertex* vertices) { drawTriangle<variantFT, DecalSource>(vertices); }
void drawTriangleFTModulate(const GsVertex* vertices) { drawTriangle<variantFT, ModulateSource>(vertices); }
void drawTriangleFTDecal_Z(const GsVertex* vertices) { drawTriangle<variantFT_Z, DecalSource>(vertices); }
void drawTriangleFTModulate_Z(const GsVertex* vertices) {
    drawTriangle<variantFT_Z, ModulateSource>(vertices);
}
void drawTriangleGT(const GsVertex* vertices) { drawTriangle<variantGT, DecalSource>(vertices); }

}  // namespace tarn
