// The vertex queue: when a primitive is complete, and which vertices stay for the next one.
#include "base/device_codes.h"
#include "gs/display.h"
#include "gs/primitives.h"

#include <cstddef>

namespace tarn {
namespace {

/// Moves a vertex down one slot. Attributes that the primitive does not use stay in their slot, so a
/// flat-shaded strip does not keep a colour per vertex.
void moveVertex(std::size_t to) {
    const GsVertex& from = Gs.gsvertex[to + 1];
    GsVertex& vertex = Gs.gsvertex[to];
    vertex.x = from.x;
    vertex.y = from.y;
    vertex.z = from.z;
    vertex.f = from.f;
    if (Gs.prim().tme == 1) {
        if (Gs.prim().fst == 1) {
            vertex.u = from.u;
            vertex.v = from.v;
        } else {
            vertex.s = from.s;
            vertex.t = from.t;
            vertex.q = from.q;
        }
    }
    if (Gs.prim().iip == 1) {
        vertex.rgba = from.rgba;
    }
}

void stepFrom(std::size_t first) {
    --Gs.primC;
    for (std::size_t i = first; static_cast<s32>(i) < Gs.primC; ++i) {
        moveVertex(i);
    }
}

}  // namespace

void stepGSvertex() { stepFrom(0); }
void stepGSfanvertex() { stepFrom(1); }

void vertexKick(bool draws) {
    const u32 type = Gs.prim().type;
    ++Gs.primC;
    if (Gs.primC < primTableC[type]) {
        return;
    }
    if (draws) {
        if (GsHost.pictureIntact) {
            beforeDrawing();
        }
        (*primitiveRoutines)[type](Gs.gsvertex.data());
    }
    switch (PrimitiveType{type}) {
    case PrimitiveType::TriangleFan:
        stepGSfanvertex();
        break;
    case PrimitiveType::LineStrip:
    case PrimitiveType::TriangleStrip:
        stepGSvertex();
        break;
    default:
        Gs.primC = 0;
        break;
    }
}

}  // namespace tarn
