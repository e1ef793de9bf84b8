// The background: an evening sky with stars and a setting sun, mountains, and the floor's lines that lead to
// the horizon.
#include "bounce.h"

static Quadword memory[256];

static void addVertex(Packet* packet, s32 x, s32 y) {
    packetXyz2(packet, (u32)(x + origin) << 4, (u32)(y + origin) << 4, 0);
}

static void addColour(Packet* packet, u32 colour) {
    packetColour(packet, colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF, 0x80);
}

/// Starts primitives of a type, with a colour before each `vertices` vertices.
static void begin(Packet* packet, u32 primitive, u32 vertices) {
    packetRegister(packet, GS_PRIM, primitive);
    packetOpen(packet, 0x55551, 1 + vertices);
}

/// A gradient of colours from the top of the screen down.
static void drawSky(Packet* packet) {
    static const struct {
        s32 y;
        u32 colour;
    } stops[] = {{0, 0x301008},       {50, 0x60182C},      {95, 0x802878},          {125, 0x7050D8},
                 {horizon, 0x78A0FF}, {horizon, 0x401830}, {screenHeight, 0x602C50}};
    begin(packet, PRIM_TRIANGLE_STRIP | PRIM_GOURAUD, 1);
    for (u32 i = 0; i < sizeof stops / sizeof stops[0]; i++)
        for (s32 x = -1; x <= screenWidth; x += screenWidth + 1) {
            addColour(packet, stops[i].colour);
            addVertex(packet, x, stops[i].y);
        }
}

static void drawStars(Packet* packet) {
    u32 random = 12345;
    begin(packet, PRIM_POINT, 1);
    for (u32 i = 0; i < 90; i++) {
        random = random * 1664525 + 1013904223;
        u32 y = (random >> 8) % 100;
        u32 light = 255 - 2 * y;
        addColour(packet, light << 16 | (light * 7 / 8) << 8 | light * 7 / 8);
        addVertex(packet, (s32)((random >> 16) % screenWidth), (s32)y);
    }
}

/// A disc of rows, with gaps that widen downwards.
static void drawSun(Packet* packet) {
    enum { radius = 44, centreX = screenWidth / 2, centreY = 112 };
    begin(packet, PRIM_SPRITE, 2);
    s32 half = 0;
    for (s32 y = -radius; centreY + y < horizon; y++) {
        while (y < 0 && half * half < radius * radius - y * y)
            half++;
        while (half * half > radius * radius - y * y)
            half--;
        if (y > -8 && (y + 8) % 7 < 1 + (y + 8) / 8)
            continue;
        u32 down = (u32)(y + radius);
        addColour(packet, gsColour(255, 236 - 2 * down, 90 + down, 0));
        addVertex(packet, centreX - half, centreY + y);
        addVertex(packet, centreX + half, centreY + y + 1);
    }
}

/// Mountains, each with a sunlit and a dark side.
static void drawMountains(Packet* packet) {
    static const struct {
        s16 left, peak, right, height;
    } mountains[] = {{40, 84, 128, 22},   {200, 236, 280, 24}, {-1, 14, 70, 34},
                     {250, 306, 320, 38}, {30, 52, 96, 14},    {216, 262, 300, 15}};
    begin(packet, PRIM_TRIANGLE, 3);
    for (u32 i = 0; i < sizeof mountains / sizeof mountains[0]; i++) {
        s32 top = horizon - mountains[i].height;
        s32 edge = mountains[i].peak < screenWidth / 2 ? mountains[i].left : mountains[i].right;
        s32 foot = mountains[i].peak + (edge == mountains[i].left ? 8 : -8);
        s32 lit = edge == mountains[i].left ? mountains[i].right : mountains[i].left;
        addColour(packet, 0x401428);
        addVertex(packet, mountains[i].peak, top);
        addVertex(packet, edge, horizon);
        addVertex(packet, foot, horizon);
        addColour(packet, 0x602450);
        addVertex(packet, mountains[i].peak, top);
        addVertex(packet, foot, horizon);
        addVertex(packet, lit, horizon);
    }
}

/// Lines from the bottom to the vanishing point, in pieces that get darker with distance. They end at the
/// edge of the screen, because vertices beyond it would be clamped to it.
static void drawFloor(Packet* packet) {
    enum { rows = screenHeight - horizon, spacing = 56, half = screenWidth / 2, piece = 8, first = 8 };
    begin(packet, PRIM_LINE, 2);
    for (s32 line = -40; line <= 40; line++) {
        s32 size = line < 0 ? -line : line;
        s32 end = size * spacing > half ? half * rows / (size * spacing) : rows;
        for (s32 row = first; row < end; row += piece) {
            s32 next = row + piece < end ? row + piece : end;
            addColour(packet, floorColour((u32)row));
            addVertex(packet, half + line * spacing * row / rows, horizon + row);
            addVertex(packet, half + line * spacing * next / rows, horizon + next);
        }
    }
}

void drawBackground(void) {
    Packet packet = packetIn(memory, sizeof memory / sizeof memory[0]);
    packetRegister(&packet, GS_FRAME_1, gsFrame(backgroundPage, frameWidth64, PSM_32, 0));
    drawSky(&packet);
    drawStars(&packet);
    drawSun(&packet);
    drawMountains(&packet);
    drawFloor(&packet);
    packetSend(&packet);
}
