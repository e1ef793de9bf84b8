// A test card of everything that the Graphics Synthesizer draws, 320 x 240: twelve cells of 80 x 80.
#include "ball.h"
#include "tarn_guest.h"
#include "text.h"

enum { width = 320, height = 240, width64 = 6, cell = 80, columns = 4 };

// Local memory. Pages are 32 blocks.
enum {
    depthPage = 45,
    fontBlock = 90 * 32,
    paletteBlock = fontBlock + 32,  // text, then 256 colours, 256 of 16 bits, 16
    ramp32Block = paletteBlock + 1,
    ramp16Block = ramp32Block + 4,
    ramp4Block = ramp16Block + 2,
    ballBlock = 92 * 32,  // 32-bit texels
    ball8Block = ballBlock + 64,
    ball4Block = ball8Block + 64,
    boardBlock = 100 * 32,
    stripesBlock = boardBlock + 64
};

enum { ballSize = 28, centreX = 40, centreY = 45 };
enum { COLOUR_XYZ2 = 0x51, COLOUR_UV_XYZ2 = 0x531, COLOUR_ST_XYZ2 = 0x521, UV_XYZ2 = 0x53 };
enum { UNITY = 0x80808080 };

static const f32 fullTurn = 6.2831853f;

static Quadword memory[256];
static Packet packet;
static Font font;

/// Starts vertices that consist of `registers`.
static void beginPrimitive(u32 type, u64 registers, u32 registerCount) {
    packetRegister(&packet, GS_PRIM, type);
    packetOpen(&packet, registers, registerCount);
}

static void addColour(u32 colour) {
    packetColour(&packet, colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF, colour >> 24);
}

// Coordinates are pixels of a cell; the drawing offset of each cell subtracts 2048 and adds its place.
static void addVertex(s32 x, s32 y, u32 z) { packetXyz2(&packet, (2048 + x) * 16, (2048 + y) * 16, z); }
static void addUv(u32 u, u32 v) { packetUv(&packet, u * 16, v * 16); }

/// A point on a circle around the centre of the cell.
static void addOnCircle(f32 angle, f32 radius) {
    addVertex(centreX + toInteger(radius * cosine(angle)), centreY + toInteger(radius * sine(angle)), 0);
}

/// A hue; 0 and 1 are red.
static u32 hue(f32 position) {
    u32 channels[3];
    for (u32 i = 0; i < 3; i++)
        channels[i] = 132 + toInteger(120.0f * cosine(fullTurn * (position - toReal(i) / 3.0f)));
    return gsColour(channels[0], channels[1], channels[2], 0x80);
}

static void drawPoints(void) {
    beginPrimitive(PRIM_POINT, COLOUR_XYZ2, 2);
    for (u32 i = 0; i < 180; i++) {
        addColour(hue(toReal(i) / 180.0f));
        addOnCircle(toReal(i) * 2.399963f, 2.3f * squareRoot(toReal(i)));
    }
}

static void drawLines(void) {
    beginPrimitive(PRIM_LINE, COLOUR_XYZ2, 2);
    for (u32 i = 0; i < 32; i++)
        for (u32 end = 0; end < 2; end++) {
            addColour(hue(toReal(i) / 32.0f));
            addOnCircle(toReal(i) * fullTurn / 32.0f, end == 0 ? 8.0f : 31.0f);
        }
}

static void drawLineStrip(void) {
    beginPrimitive(PRIM_LINE_STRIP, COLOUR_XYZ2, 2);
    for (u32 i = 0; i <= 72; i++) {
        f32 angle = toReal(i) * fullTurn / 72.0f;
        addColour(hue(toReal(i) / 72.0f));
        addVertex(centreX + toInteger(32.0f * sine(3.0f * angle)),
                  centreY + toInteger(30.0f * sine(2.0f * angle)), 0);
    }
}

static void drawTriangles(void) {
    for (u32 i = 0; i < 8; i++) {
        beginPrimitive(i % 2 == 0 ? PRIM_TRIANGLE : PRIM_TRIANGLE | PRIM_GOURAUD, COLOUR_XYZ2, 2);
        f32 angle = toReal(i) * fullTurn / 8.0f;
        addColour(hue(toReal(i) / 8.0f));
        addOnCircle(angle, 31.0f);
        addColour(hue(toReal(i + 2) / 8.0f));
        addOnCircle(angle + 0.7f, 24.0f);
        addColour(hue(toReal(i + 1) / 8.0f));
        addOnCircle(angle + 0.4f, 6.0f);
    }
    beginPrimitive(7, COLOUR_XYZ2, 2);  // the reserved type, which must not draw
    addColour(0xFFFFFFFF);
    addVertex(centreX, centreY, 0);
}

static void drawTriangleStrip(void) {
    beginPrimitive(PRIM_TRIANGLE_STRIP | PRIM_GOURAUD, COLOUR_XYZ2, 2);
    for (s32 i = 0; i < 14; i++) {
        s32 middle = centreY + toInteger(16.0f * sine(toReal(i) * 0.55f));
        addColour(hue(toReal(i) / 14.0f));
        addVertex(7 + i * 5, middle - 14, 0);
        addColour(0x80181818);
        addVertex(7 + i * 5, middle + 14, 0);
    }
}

/// A colour wheel around the centre of the cell. `attributes` is added to the type.
static void drawWheel(u32 attributes) {
    beginPrimitive(PRIM_TRIANGLE_FAN | PRIM_GOURAUD | attributes, COLOUR_XYZ2, 2);
    addColour(0x80FFFFFF);
    addVertex(centreX, centreY, 0);
    for (u32 i = 0; i <= 24; i++) {
        addColour(hue(toReal(i) / 24.0f));
        addOnCircle(toReal(i) * fullTurn / 24.0f, 31.0f);
    }
}

static void drawTriangleFan(void) { drawWheel(0); }

/// A sprite with the top left corner of the current texture.
static void addSprite(s32 x, s32 y, u32 w, u32 h) {
    beginPrimitive(PRIM_SPRITE | PRIM_TEXTURE | PRIM_UV, UV_XYZ2, 2);
    addUv(0, 0);
    addVertex(x, y, 0);
    addUv(w, h);
    addVertex(x + w, y + h, 0);
}

/// The ball in 32-bit greys, and as 8-bit and 4-bit indexes, all with rows of 64 words.
static void makeBalls(void) {
    Canvas balls[3] = {newCanvas(64, ballSize), newCanvas(64, ballSize), newCanvas(64, ballSize)};
    for (u32 i = 0; i < 3; i++)
        memset(balls[i].pixels, 0, 64 * ballSize * sizeof(u32));
    for (u32 y = 0; y < ballSize; y++)
        for (u32 x = 0; x < ballSize; x++) {
            u32 light = ballLight(x, y, ballSize);
            canvasRow(&balls[0], y)[x] = light * 0x010101 | (light == 0 ? 0 : 0x80000000);
            canvasRow(&balls[1], y)[x >> 2] |= light << (x & 3) * 8;
            canvasRow(&balls[2], y)[x >> 3] |= light >> 4 << (x & 7) * 4;
        }
    for (u32 i = 0; i < 3; i++)
        uploadImage(balls[i].pixels, 64, ballSize, ballBlock + i * 64, 1, 0, 0);
}

/// Palettes from dark to a bright colour; entry 0 is transparent. In 256 entries of 32 bits, bits 3 and 4 of
/// the index are exchanged.
static void makePalettes(void) {
    Canvas ramp32 = newCanvas(64, 4);
    Canvas ramp16 = newCanvas(64, 2);
    Canvas ramp4 = newCanvas(16, 1);
    memset(ramp16.pixels, 0, 64 * 2 * sizeof(u32));
    for (u32 i = 0; i < 256; i++) {
        u32 place = (i & 0xE7) | (i & 8) << 1 | (i & 16) >> 1;
        ramp32.pixels[place] = i == 0 ? 0 : gsColour(i, i / 3, i / 5, 0x80);
        u32 entry = 0x8000 | i >> 5 | i >> 3 << 5 | i >> 4 << 10;
        ramp16.pixels[i >> 1] |= (i == 0 ? 0 : entry) << (i & 1) * 16;
        if (i < 16)
            ramp4.pixels[i] = i == 0 ? 0 : gsColour(i * 17, i * 13, i * 3, 0x80);
    }
    uploadImage(ramp32.pixels, 64, 4, ramp32Block, 1, 0, 0);
    uploadImage(ramp16.pixels, 64, 2, ramp16Block, 1, 0, 0);
    uploadImage(ramp4.pixels, 16, 1, ramp4Block, 1, 0, 0);
}

static void drawSprites(void) {
    packetRegister(&packet, GS_TEXA, gsTexa(0, 0, 0x80));
    packetRegister(&packet, GS_TEST_1, gsTestAlpha(ATST_GREATER, 0, 0));
    packetRegister(&packet, GS_RGBAQ, gsRgbaq(0x80D89050, 0));
    packetRegister(&packet, GS_TEX0_1, gsTex0(ballBlock, 1, PSM_32, 6, 5, 1, TFX_MODULATE));
    addSprite(8, 15, ballSize, ballSize);
    packetRegister(&packet, GS_TEX0_1,
                   gsTex0(ball8Block, 4, PSM_8, 6, 5, 1, TFX_DECAL) | gsTex0Palette(ramp32Block, PSM_32, 0));
    addSprite(44, 15, ballSize, ballSize);
    packetRegister(&packet, GS_TEX0_1,
                   gsTex0(ball8Block, 4, PSM_8, 6, 5, 1, TFX_DECAL) | gsTex0Palette(ramp16Block, PSM_16, 0));
    addSprite(8, 48, ballSize, ballSize);
    packetRegister(&packet, GS_TEX0_1,
                   gsTex0(ball4Block, 8, PSM_4, 6, 5, 1, TFX_DECAL) | gsTex0Palette(ramp4Block, PSM_32, 0));
    addSprite(44, 48, ballSize, ballSize);
}

/// A shaded chessboard, and stripes whose alpha increases from 0 at the left to 0xF8.
static void makeTextures(void) {
    Canvas board = newCanvas(64, 64);
    Canvas stripes = newCanvas(64, 16);
    for (u32 y = 0; y < 64; y++)
        for (u32 x = 0; x < 64; x++)
            canvasRow(&board, y)[x] =
                0x80000000 | (((x ^ y) & 8) != 0 ? 0x70A8C0 + (x + y) * 0x010000 : 0x302010 + y * 0x0101);
    for (u32 y = 0; y < 16; y++)
        for (u32 x = 0; x < 64; x++)
            canvasRow(&stripes, y)[x] = x << 27 | ((x & 4) != 0 ? 0x60E0F0 : 0x4080E0);
    uploadImage(board.pixels, 64, 64, boardBlock, 1, 0, 0);
    uploadImage(stripes.pixels, 64, 16, stripesBlock, 1, 0, 0);
}

/// Above, a decal and a modulated triangle by U and V; below, a floor in perspective by S, T and Q.
static void drawTextures(void) {
    for (u32 i = 0; i < 2; i++) {
        u32 function = i == 0 ? TFX_DECAL : TFX_MODULATE;
        s32 left = 6 + (s32)i * 36;
        packetRegister(&packet, GS_TEX0_1, gsTex0(boardBlock, 1, PSM_32, 6, 6, 1, function));
        beginPrimitive(PRIM_TRIANGLE | PRIM_TEXTURE | PRIM_UV, COLOUR_UV_XYZ2, 3);
        addColour(0x8040A0FF);
        addUv(0, 0);
        addVertex(left, 14, 0);
        addColour(0x8040A0FF);
        addUv(63, 0);
        addVertex(left + 32, 18, 0);
        addColour(0x8040A0FF);
        addUv(32, 63);
        addVertex(left + 12, 44, 0);
    }
    for (s32 row = 0; row < 6; row++) {
        beginPrimitive(PRIM_TRIANGLE_STRIP | PRIM_TEXTURE, COLOUR_ST_XYZ2, 3);
        for (s32 column = 0; column < 4; column++)
            for (s32 edge = row + 1; edge >= row; edge--) {
                f32 q = 1.0f / (1.0f + 0.6f * toReal(edge));
                addColour(UNITY);
                packetSt(&packet, bitsOf(toReal(column) * q * 0.32f), bitsOf(toReal(edge) * q * 0.16f),
                         bitsOf(q));
                addVertex(centreX + toInteger((toReal(column) - 1.5f) * 22.0f * q), 46 + toInteger(32.0f * q),
                          0);
            }
    }
}

/// The stripes with every method of the alpha test, against 0x80.
static void drawAlphaTests(void) {
    packetRegister(&packet, GS_TEX0_1, gsTex0(stripesBlock, 1, PSM_32, 6, 4, 1, TFX_MODULATE));
    packetRegister(&packet, GS_RGBAQ, gsRgbaq(UNITY, 0));
    for (u32 method = ATST_NEVER; method <= ATST_NOTEQUAL; method++) {
        packetRegister(&packet, GS_TEST_1, gsTestAlpha(method, 0x80, 0));
        addSprite(6 + method % 2 * 37, 14 + method / 2 * 16, 32, 13);
    }
}

/// Two intersecting triangles, and a bar of constant depth through both.
static void drawDepthTests(void) {
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_ALWAYS));
    beginPrimitive(PRIM_SPRITE, COLOUR_XYZ2, 2);
    addColour(0x80301810);
    addVertex(4, 13, 0);
    addColour(0x80301810);
    addVertex(76, 77, 0);
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_GEQUAL));
    static const struct {
        u32 colour, nearLeft, nearRight;
    } leaning[] = {{0x805060F0, 1000, 100}, {0x8060C050, 100, 1000}};
    for (u32 i = 0; i < 2; i++) {
        beginPrimitive(PRIM_TRIANGLE, COLOUR_XYZ2, 2);
        addColour(leaning[i].colour);
        addVertex(8, 16 + i * 14, leaning[i].nearLeft);
        addColour(leaning[i].colour);
        addVertex(72, 16 + i * 14, leaning[i].nearRight);
        addColour(leaning[i].colour);
        addVertex(40, 60 + i * 14, 550);
    }
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_GREATER));
    beginPrimitive(PRIM_SPRITE, COLOUR_XYZ2, 2);
    addColour(0x80E0C040);
    addVertex(6, 34, 0);
    addColour(0x80E0C040);
    addVertex(74, 40, 750);
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_NEVER));  // draws nothing
    beginPrimitive(PRIM_SPRITE, COLOUR_XYZ2, 2);
    addVertex(0, 0, 0);
    addVertex(80, 80, 0xFFFFFFFF);
}

/// Four scissor windows of the second context, each moved outwards from the quarter of the wheel that it
/// shows.
static void drawContexts(void) {
    const u32 left = 3 * cell + 1;
    const u32 top = cell * 2;
    packetRegister(&packet, GS_FRAME_2, gsFrame(0, width64, PSM_32, 0));
    for (u32 i = 0; i < 4; i++) {
        u32 right = i & 1, below = i >> 1;
        u32 x = right ? centreX + 2 : centreX - 33;
        u32 y = below ? centreY + 2 : centreY - 32;
        packetRegister(&packet, GS_SCISSOR_2, gsScissor(left + x, top + y, left + x + 29, top + y + 28));
        packetRegister(&packet, GS_XYOFFSET_2,
                       gsXyoffset(2048 - left + (right ? -2 : 2), 2048 - top + (below ? -2 : 2)));
        drawWheel(PRIM_CONTEXT_2);
    }
}

/// The wheel from the fan's cell in slices, moved alternately to either side.
static void moveSlices(void) {
    packetSend(&packet);
    for (u32 slice = 0; slice < 11; slice++) {
        u32 y = cell + 12 + slice * 6;
        u32 x = 2 * cell + 9 + (slice & 1) * 10 - 5;
        moveImage(0, width64, cell + 9, y, 64, 6, 0, width64, x, y + cell);
    }
}

static const struct {
    const char* title;
    void (*draw)(void);
} cells[] = {
    {"POINTS", drawPoints},         {"LINES", drawLines},         {"LINE STRIP", drawLineStrip},
    {"TRIANGLES", drawTriangles},   {"STRIP", drawTriangleStrip}, {"FAN", drawTriangleFan},
    {"SPRITES", drawSprites},       {"TEXTURES", drawTextures},   {"ALPHA TEST", drawAlphaTests},
    {"DEPTH TEST", drawDepthTests}, {"LOCAL MOVE", moveSlices},   {"CONTEXT 2", drawContexts},
};

/// A flat panel with a light edge, a title, and its contents.
static void drawCell(u32 i) {
    u32 left = i % columns * cell + 1;
    u32 top = i / columns * cell;
    packetRegister(&packet, GS_XYOFFSET_1, gsXyoffset(2048 - left, 2048 - top));
    packetRegister(&packet, GS_SCISSOR_1, gsScissor(left, top, left + cell, top + cell));
    packetRegister(&packet, GS_TEST_1, 0);
    for (u32 edge = 0; edge < 2; edge++) {
        beginPrimitive(PRIM_SPRITE, COLOUR_XYZ2, 2);
        addColour(edge == 0 ? 0x80705040 : 0x80301810);
        addVertex(1 + edge, 1 + edge, 0);
        addColour(edge == 0 ? 0x80705040 : 0x80301810);
        addVertex(79 - edge, 79 - edge, 0);
    }
    cells[i].draw();
    packetRegister(&packet, GS_TEST_1, gsTestAlpha(ATST_GREATER, 0, 0));
    packetText(&packet, &font, paletteBlock, 2048 + 5, 2048 + 4, cells[i].title);
}

int main(void) {
    packet = packetIn(memory, sizeof memory / sizeof memory[0]);
    font = makeFont(fontBlock, 1);
    makeTextPalette(paletteBlock, 0x80E8F0F8, 0x80000000);
    makePalettes();
    makeBalls();
    makeTextures();
    packetRegister(&packet, GS_FRAME_1, gsFrame(0, width64, PSM_32, 0));
    packetRegister(&packet, GS_ZBUF_1, gsZbuf(depthPage, PSM_32, 0));
    writeDevice64(GS_DISPFB1, gsDispfb(0, width64, PSM_32, 0, 0));
    writeDevice64(GS_DISPLAY1, gsDisplay(width, height));
    writeDevice64(GS_PMODE, gsPmode(1));
    for (u32 i = 0; i < sizeof cells / sizeof cells[0]; i++)
        drawCell(i);
    packetSend(&packet);
    waitForever();
}
