// The vertex kick, the tables of primitive types, and the set-up that every drawing routine relies on.
#pragma once

#include "machine/machine.h"

#include <array>

namespace tarn {

inline constexpr s32 lastUntexturedRow = 1023;  ///< a limit that textured vertices do not have

using PrimitiveRoutine = void (*)(const GsVertex* vertices);

/// By primitive type: vertices that complete one, and the routine that draws it.
extern const std::array<s32, 8> primTableC;
extern const std::array<PrimitiveRoutine, 8> primTable;

/// The table through which complete primitives are drawn. An observer replaces it by its own, whose routines
/// call those of primTable.
inline const std::array<PrimitiveRoutine, 8>* primitiveRoutines = &primTable;

/// Counts the vertex just stored in the queue's slot primC. A completed primitive is drawn if `draws` is set
/// (XYZ2, XYZF2); the queue advances either way (also for XYZ3, XYZF3).
void vertexKick(bool draws);

/// Advance the queue after a primitive of a strip or a fan.
void stepGSvertex();
void stepGSfanvertex();

/// The entries of primTable. They draw the queue's vertices in the current context and do not change the
/// queue.
void primPoint(const GsVertex* vertices);
void primLine(const GsVertex* vertices);
void primTriangle(const GsVertex* vertices);
void primSprite(const GsVertex* vertices);
void primNull(const GsVertex* vertices);  ///< does nothing

/// Moves a vertex into the scissor rectangle and the frame buffer.
void clipVertex(GsVertex& vertex);

/// The same for a textured vertex, whose texel follows where the scissor moves it.
void clipVertexT(GsVertex& vertex);

/// Computes u and v, in texels of the current texture, from s, t and q.
void STQtoUV(GsVertex& vertex);

}  // namespace tarn
