// Writes to the vertex registers. Inline because they are most of a display list.
#pragma once

#include "base/bits.h"
#include "gs/primitives.h"

#include <bit>

namespace tarn {

/// The queue's slot for the next vertex, which RGBAQ, ST and UV fill before the XYZ write.
inline GsVertex& pendingVertex() { return Gs.gsvertex[static_cast<u32>(Gs.primC)]; }

// Each takes the register's halves: bits 0-31 and bits 32-63.

inline void writeRgbaq(u32 rgba, u32 q) {
    GsVertex& vertex = pendingVertex();
    vertex.rgba = rgba;
    vertex.q = std::bit_cast<f32>(q);
    Gs.rgba = rgba;
}

inline void writeSt(u32 s, u32 t) {
    GsVertex& vertex = pendingVertex();
    vertex.s = std::bit_cast<f32>(s);
    vertex.t = std::bit_cast<f32>(t);
}

/// The integer parts of the texel; the register holds 11.4 numbers.
inline void writeUv(u32 uv) {
    GsVertex& vertex = pendingVertex();
    vertex.u = static_cast<s32>(bits(uv, 4, 11));
    vertex.v = static_cast<s32>(bits(uv, 20, 11));
}

/// The integer parts of the position, from 12.4 numbers. Completes the vertex. XYZ3 and XYZF3 do not draw.
inline void writeXyz(u32 xy, u32 z, bool draws) {
    GsVertex& vertex = pendingVertex();
    vertex.x = static_cast<s32>(bits(xy, 4, 12));
    vertex.y = static_cast<s32>(bits(xy, 20, 12));
    vertex.z = z;
    vertexKick(draws);
}

inline void writeXyzf(u32 xy, u32 zf, bool draws) {
    pendingVertex().f = zf >> 24;
    writeXyz(xy, zf & 0xFFFFFF, draws);
}

}  // namespace tarn
