// The font texture and text from sprites.
#include "text.h"

#include "canvas.h"
#include "kernel.h"
#include "memory.h"

// Texture rows are 64 words, the narrowest that a transfer can lay out: 512 texels.
enum { wordsPerRow = 64, width64 = 8, firstCharacter = ' ', characters = 64, charactersPerRow = 32 };
enum { cellWidth = 6, cellHeight = 8 };
enum { INK = 1, SHADOW = 2 };

static void putSquare(u32* words, u32 x, u32 y, u32 scale, u32 value) {
    for (u32 row = y * scale; row < (y + 1) * scale; row++)
        for (u32 column = x * scale; column < (x + 1) * scale; column++) {
            u32* word = words + row * wordsPerRow + (column >> 3);
            u32 shift = (column & 7) * 4;
            *word = (*word & complement(0xFu << shift)) | value << shift;
        }
}

Font makeFont(u32 block, u32 scale) {
    u32 rows = characters / charactersPerRow * cellHeight * scale;
    u32* words = allocate(rows * wordsPerRow * sizeof(u32));
    memset(words, 0, rows * wordsPerRow * sizeof(u32));
    for (u32 i = 0; i < characters; i++) {
        const u8* glyph = glyphOf((char)(firstCharacter + i));
        u32 left = i % charactersPerRow * cellWidth;
        u32 top = i / charactersPerRow * cellHeight;
        for (u32 value = SHADOW; value >= INK; value--)  // the character covers its shadow
            for (u32 row = 0; row < glyphHeight; row++)
                for (u32 column = 0; column < glyphWidth; column++)
                    if ((glyph[row] << column & 0x10) != 0)
                        putSquare(words, left + column + value - INK, top + row + value - INK, scale, value);
    }
    uploadImage(words, wordsPerRow, rows, block, 1, 0, 0);
    return (Font){block, scale};
}

void makeTextPalette(u32 block, u32 colour, u32 shadow) {
    Quadword entries[4] = {{(u64)colour << 32, shadow}};
    uploadImage((const u32*)entries, 16, 1, block, 1, 0, 0);
}

void packetText(Packet* packet, const Font* font, u32 palette, u32 x, u32 y, const char* text) {
    u32 width = cellWidth * font->scale;
    u32 height = cellHeight * font->scale;
    packetRegister(packet, GS_TEX0_1,
                   gsTex0(font->block, width64, PSM_4, 9, 5, 1, TFX_DECAL) |
                       gsTex0Palette(palette, PSM_32, 0));
    packetRegister(packet, GS_PRIM, PRIM_SPRITE | PRIM_TEXTURE | PRIM_UV);
    for (; *text != 0; text++, x += width) {
        u32 i = (u8)*text - firstCharacter;
        if (i - 1 >= characters - 1)
            continue;  // a blank, or not in the font
        u32 u = i % charactersPerRow * width;
        u32 v = i / charactersPerRow * height;
        packetRegister(packet, GS_UV, gsUv(u * 16, v * 16));
        packetRegister(packet, GS_XYZ2, gsXyz(x * 16, y * 16, 0));
        packetRegister(packet, GS_UV, gsUv((u + width) * 16, (v + height) * 16));
        packetRegister(packet, GS_XYZ2, gsXyz((x + width) * 16, (y + height) * 16, 0));
    }
}
