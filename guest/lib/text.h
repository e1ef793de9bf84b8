// Text drawn by the Graphics Synthesizer: glyphs in a 4-bit texture, a sprite per character.
#pragma once

#include "packet.h"
#include "types.h"

/// A font in local memory: the characters from space to underscore, 32 per row, each in a cell of 6 × 8
/// texels times `scale`. Texels are 1 in a character, 2 in its shadow, and 0 elsewhere.
typedef struct {
    u32 block;
    u32 scale;
} Font;

/// Makes a font, scale 1 or 2, of 1024 × scale words from `block` on. Takes some frames.
Font makeFont(u32 block, u32 scale);

/// Makes a palette for text, one block: the colours of the characters and of their shadows. The rest is
/// transparent (alpha 0).
void makeTextPalette(u32 block, u32 colour, u32 shadow);

/// Draws text in context 1 with its top left corner at (x, y), in pixels with the drawing offset. To draw
/// only the characters and shadows, set gsTestAlpha(ATST_GREATER, 0, 0) in TEST_1.
void packetText(Packet* packet, const Font* font, u32 palette, u32 x, u32 y, const char* text);
