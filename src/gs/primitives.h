// Declares the vertex kick and the tables of primitive types.
#pragma once

#include "gs/gs_state.h"

#include <array>

namespace tarn {

using PrimitiveRoutine = void (*)(const GsVertex* vertices);

/// By primitive type: vertices that complete one, and the routine that draws it.
extern const std::array<s32, 8> primTableC;
extern const std::array<PrimitiveRoutine, 8> primTable;

/// Counts the vertex just stored in the queue's slot primC; a completed primitive is drawn when `draws`
/// (XYZ2, XYZF2) and the queue steps either way (XYZ3, XYZF3 as well).
void vertexKick(bool draws);

/// Step the queue after a strip's and after a fan's primitive.
void stepGSvertex();
void stepGSfanvertex();

}  // namespace tarn
