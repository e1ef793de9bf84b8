// Drawing of primitives: removing the offset, clipping, texel coordinates, and the choice of the routine.
#include "gs/primitives.h"

#include "base/device_codes.h"
#include "gs/drawing.h"
#include "gs/gs.h"
#include "gs/local_memory.h"
#include "gs/pixel_writers.h"

#include <algorithm>
#include <limits>

namespace tarn {

const std::array<s32, 8> primTableC = {1, 2, 2, 3, 3, 3, 2, 0};
const std::array<PrimitiveRoutine, 8> primTable = {
    primPoint,    primLine,     primLine,   primTriangle,  //
    primTriangle, primTriangle, primSprite, primNull,
};

namespace {

/// The scissor rectangle and the frame's size, signed because vertices may lie left of or above them.
struct ClipBounds {
    s32 left = static_cast<s32>(Gs.scissor().scax0);
    s32 top = static_cast<s32>(Gs.scissor().scay0);
    s32 right = static_cast<s32>(Gs.scissor().scax1);
    s32 bottom = static_cast<s32>(Gs.scissor().scay1);
    s32 width = static_cast<s32>(Gs.gsfb().fbw);
    s32 height = static_cast<s32>(Gs.gsfb().maxRows);
};

/// A copy of the first `count` vertices of the queue, without the drawing offset.
template <std::size_t count>
std::array<GsVertex, count> takeVertices(const GsVertex* queue) {
    std::array<GsVertex, count> vertices;
    std::copy_n(queue, count, vertices.begin());
    for (GsVertex& vertex : vertices) {
        vertex.x -= static_cast<s32>(Gs.xyoffset().ofx);
        vertex.y -= static_cast<s32>(Gs.xyoffset().ofy);
    }
    return vertices;
}

/// Clamps a coordinate to the scissor, the far side last, and returns the texel moved accordingly. The texel
/// has 64 bits so that it does not wrap before the final clamp.
s64 clipToScissor(s32& coordinate, s32 first, s32 last, s64 texel) {
    if (coordinate < first) {
        texel += s64{first} - coordinate;
        coordinate = first;
    }
    if (coordinate > last) {
        texel -= s64{coordinate} - last;
        coordinate = last;
    }
    return texel;
}

/// Clamps to [0, size - 1], the far side last: with size 0 the result is always -1.
s32 clipToSize(s64 value, s32 size) {
    return static_cast<s32>(std::min(std::max<s64>(value, 0), s64{size} - 1));
}

s32 truncate(double value) {
    constexpr double lowest = std::numeric_limits<s32>::min();
    constexpr double highest = std::numeric_limits<s32>::max();
    if (!(value == value)) {
        return 0;
    }
    return static_cast<s32>(std::clamp(value, lowest, highest));
}

void clip(GsVertex& vertex, const ClipBounds& bounds) {
    clipToScissor(vertex.x, bounds.left, bounds.right, 0);
    clipToScissor(vertex.y, bounds.top, bounds.bottom, 0);
    vertex.x = clipToSize(vertex.x, bounds.width);
    vertex.y = std::min(clipToSize(vertex.y, bounds.height), lastUntexturedRow);
}

void clipTextured(GsVertex& vertex, const ClipBounds& bounds) {
    const s64 u = clipToScissor(vertex.x, bounds.left, bounds.right, vertex.u);
    const s64 v = clipToScissor(vertex.y, bounds.top, bounds.bottom, vertex.v);
    vertex.x = clipToSize(vertex.x, bounds.width);
    vertex.y = clipToSize(vertex.y, bounds.height);
    vertex.u = clipToSize(u, bounds.width);  // the frame's bounds, not the texture's
    vertex.v = clipToSize(v, bounds.height);
}

template <std::size_t count>
void prepareUntextured(std::array<GsVertex, count>& vertices) {
    const ClipBounds bounds;
    for (GsVertex& vertex : vertices) {
        clip(vertex, bounds);
    }
}

template <std::size_t count>
void prepareTextured(std::array<GsVertex, count>& vertices) {
    const ClipBounds bounds;
    for (GsVertex& vertex : vertices) {
        if (Gs.prim().fst == 0) {
            STQtoUV(vertex);
        }
        clipTextured(vertex, bounds);
    }
}

}  // namespace

void clipVertex(GsVertex& vertex) { clip(vertex, ClipBounds{}); }
void clipVertexT(GsVertex& vertex) { clipTextured(vertex, ClipBounds{}); }

void STQtoUV(GsVertex& vertex) {
    if (vertex.q == 0.0F) {
        vertex.u = 0;
        vertex.v = 0;
        return;
    }
    vertex.u = truncate(double{vertex.s} / double{vertex.q} * Gs.tex0().tw);
    vertex.v = truncate(double{vertex.t} / double{vertex.q} * Gs.tex0().th);
}

void primPoint(const GsVertex* vertices) {
    const auto [point] = takeVertices<1>(vertices);
    const ClipBounds bounds;
    if (point.x < bounds.left || point.y < bounds.top || point.x > bounds.right || point.y > bounds.bottom ||
        point.x < 0 || point.x >= bounds.width || point.y < 0 || point.y >= bounds.height) {
        return;
    }
    // Points bypass the pixel pipeline: no alpha test, no depth test.
    fBufUL(static_cast<u32>(point.y) * Gs.gsfb().fbw + static_cast<u32>(point.x)) = Gs.rgba;
    pixelsWritten += pixelsAreCounted() ? 1 : 0;
}

void primLine(const GsVertex* vertices) {
    auto ends = takeVertices<2>(vertices);
    prepareUntextured(ends);
    if (Gs.prim().iip == 1) {
        drawLineG(ends.data());
    } else {
        drawLineF(ends.data());
    }
}

void primTriangle(const GsVertex* vertices) {
    auto corners = takeVertices<3>(vertices);
    const bool gouraud = Gs.prim().iip == 1;
    const bool tested = Gs.test().zte == 1;
    PrimitiveRoutine draw;
    if (Gs.prim().tme == 0) {
        prepareUntextured(corners);
        // Gouraud triangles are never depth-tested, textured or not.
        draw = gouraud ? drawTriangleG : tested ? drawTriangleF_Z : drawTriangleF;
    } else {
        prepareTextured(corners);
        const bool modulate = Gs.tex0().tfx == textureModulate;  // the highlights draw as decals
        if (gouraud) {
            draw = drawTriangleGT;
        } else if (modulate) {
            draw = tested ? drawTriangleFTModulate_Z : drawTriangleFTModulate;
        } else {
            draw = tested ? drawTriangleFTDecal_Z : drawTriangleFTDecal;
        }
    }
    draw(corners.data());
}

void primSprite(const GsVertex* vertices) {
    auto corners = takeVertices<2>(vertices);
    if (Gs.prim().tme == 1) {
        prepareTextured(corners);
        drawSpriteT(corners.data());
        return;
    }
    prepareUntextured(corners);
    if (Gs.test().zte == 1) {
        drawSprite_Z(corners.data());
    } else {
        drawSprite(corners.data());
    }
}

void primNull(const GsVertex* /*vertices*/) {}

}  // namespace tarn
