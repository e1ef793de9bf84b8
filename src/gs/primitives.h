// The vertex kick, the tables of primitive types and the set-up that every drawing routine relies
// on.
#pragma once

#include "machine/machine.h"

#include <array>

namespace tarn {

inline constexpr s32 lastUntexturedRow = 1023;  ///< a limit that textured vertices do not have

using PrimitiveRoutine = void (*)(const GsVertex* vertices);

/// By primitive type: vertices that complete one, and the routine that draws it.
extern const std::array<s32, 8> primTableC;
extern const std::array<PrimitiveRoutine, 8> primTable;

/// The table that complete primitives are drawn through. An observer puts one of its own here, whose routines
/// call those of primTable.
inline const std::array<PrimitiveRoutine, 8>* primitiveRoutines = &primTable;

/// Counts the vertex just stored in the queue's slot primC; a completed primitive is drawn when `draws`
/// (XYZ2, XYZF2) and the queue steps either way (XYZ3, XYZF3 as well).
void vertexKick(bool draws);

/// Step the queue after a strip's and after a fan's primitive.
void stepGSvertex();
void stepGSfanvertex();

/// The entries of primTable: take the queue, which they leave as it is, and draw in the current context.
void primPoint(const GsVertex* vertices);
void primLine(const GsVertex* vertices);
void primTriangle(const GsVertex* vertices);
void primSprite(const GsVertex* vertices);
void primNull(const GsVertex* vertices);  ///< does nothing

/// Moves a vertex into the scissor rectangle and the frame buffer.
void clipVertex(GsVertex& vertex);

/// The same for a textured vertex, whose texel follows the moves that the scissor makes.
void clipVertexT(GsVertex& vertex);

/// Sets u and v, in texels of the current texture, from s, t and q.
void STQtoUV(GsVertex& vertex);

}  // namespace tarn
