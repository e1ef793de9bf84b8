// Text drawn by the Graphics Synthesizer: the glyphs as a 4-bit texture, one sprite a character.
#pragma once

#include "packet.h"
#include "types.h"

/// A font in local memory: the characters from the blank to the underscore, 32 a row, each in a cell of
/// 6 × 8 texels times `scale`. Texels are 0 around a character, 1 in it and 2 in its shadow.
typedef struct {
    u32 block;
    u32 scale;
} Font;

/// Makes a font, scale 1 or 2, of 1024 × scale words from `block` on. Takes some frames.
Font makeFont(u32 block, u32 scale);

/// A palette for text, one block: the colour of the characters and of their shadows. Around them it is
/// transparent (alpha 0).
void makeTextPalette(u32 block, u32 colour, u32 shadow);

/// Draws text in context 1 with its top left corner at (x, y), in pixels with the drawing offset. To leave
/// out what is around the characters, have gsTestAlpha(ATST_GREATER, 0, 0) in TEST_1.
void packetText(Packet* packet, const Font* font, u32 palette, u32 x, u32 y, const char* text);
