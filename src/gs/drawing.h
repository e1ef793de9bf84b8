// The drawing routines. Each takes an array of clipped vertices without the drawing offset, and draws in the
// current context. They keep no state between calls.
#pragma once

#include "machine/machine.h"

namespace tarn {

// Two vertices: the start, and the end, which is not drawn. The colour is not interpolated.
void drawLineF(const GsVertex* vertices);
void drawLineG(const GsVertex* vertices);

// Two vertices: the top left corner, and the bottom right one, whose row and column are not drawn.
void drawSprite(const GsVertex* vertices);
void drawSprite_Z(const GsVertex* vertices);  ///< at the second vertex's depth
void drawSpriteT(const GsVertex* vertices);   ///< one texel a pixel, palettes expanded

// Three vertices in any order.
void drawTriangleF(const GsVertex* vertices);
void drawTriangleF_Z(const GsVertex* vertices);
void drawTriangleG(const GsVertex* vertices);
void drawTriangleFTDecal(const GsVertex* vertices);
void drawTriangleFTModulate(const GsVertex* vertices);
void drawTriangleFTDecal_Z(const GsVertex* vertices);
void drawTriangleFTModulate_Z(const GsVertex* vertices);
void drawTriangleGT(const GsVertex* vertices);

}  // namespace tarn
