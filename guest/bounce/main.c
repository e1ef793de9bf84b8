// Bouncing balls over an evening landscape, and a wavy line of scrolling text. Everything that moves is a
// sprite: flat for the floor, otherwise with a palette texture.
//
// The packet of a frame is built once. Each frame only changes positions, texture coordinates, palettes and
// the floor's colours in it, and sends it in one transfer.
#include "bounce.h"

enum { ballCount = 24, floorLines = 12, logoLetters = 4, textLetters = screenWidth / letterWidth + 2 };
enum { spriteCount = 2 * ballCount + logoLetters + textLetters };

/// Average number of steps of an update; it varies little.
enum { stepsPerUpdate = 5283 };

static const char text[] =
    "              WELCOME TO TARN!   ALL THAT MOVES HERE IS A SPRITE...   "
    "THE BALLS HAVE 8 BITS A TEXEL AND NEVER CHANGE - THEY SPIN BECAUSE THEIR PALETTES TURN.   "
    "THESE LETTERS HAVE 4 BITS A TEXEL.   ONE PACKET A FRAME - BUILT ONCE AND PATCHED SIXTY TIMES A SECOND.  "
    " "
    "NOW LOOK INTO GUEST/BOUNCE AND MAKE IT YOURS!";

/// A sprite in the packet, in the order of the tag's descriptors.
typedef struct {
    Quadword texture;
    Quadword texelFrom;
    Quadword from;
    Quadword texelTo;
    Quadword to;
} Sprite;
enum { spriteRegisters = 0x5353E, spriteRegisterCount = 5 };

/// A row of the floor.
typedef struct {
    Quadword colour;
    Quadword from;
    Quadword to;
} FloorLine;
enum { floorRegisters = 0x551, floorRegisterCount = 3 };

/// Positions and speeds are in 256ths of a pixel. A ball's height is that of its lowest point above the
/// floor.
typedef struct {
    s32 x;
    s32 height;
    s32 speedX;
    s32 speedUp;
    u32 layer;
    u32 colour;
    u32 spin;
    Sprite* sprite;
    Sprite* shadow;
} Ball;

static const struct {
    u32 balls;
    s32 floor;  ///< row
    s32 gravity;
    s32 bounce;  ///< speed
} layers[layerCount] = {{12, 164, 27, 980}, {8, 190, 32, 1280}, {4, 226, 35, 1560}};

static Quadword memory[32 + floorLines * floorRegisterCount + spriteCount * spriteRegisterCount];
static Quadword* frameRegister;
static Quadword* moveRegister;
static u32 packetSize;
static FloorLine* lines;
static Ball balls[ballCount];
static Sprite* logoSprites;
static Sprite* textSprites;
static s8 wave[256];

static inline u64 position(s32 x, s32 y) {
    return (u64)(u32)((y + origin) << 4) << 32 | (u32)((x + origin) << 4);
}

static inline void place(Sprite* sprite, s32 x, s32 y, u32 width, u32 height) {
    sprite->from.low = position(x, y);
    sprite->to.low = position(x + (s32)width, y + (s32)height);
}

static inline void setTexels(Sprite* sprite, u32 u, u32 v, u32 width, u32 height) {
    sprite->texelFrom.low = (u64)(v << 4) << 32 | u << 4;
    sprite->texelTo.low = (u64)((v + height) << 4) << 32 | (u + width) << 4;
}

/// Adds quadwords for sprites or lines and returns their place.
static Quadword* reserve(Packet* packet, u32 quadwords) {
    Quadword* first = packet->memory + packet->count;
    for (u32 i = 0; i < quadwords; i++)
        packetAdd(packet, 0, 0);
    return first;
}

static Sprite* reserveSprites(Packet* packet, u32 count, u64 texture, u32 width, u32 height) {
    Sprite* sprites = (Sprite*)reserve(packet, count * spriteRegisterCount);
    for (u32 i = 0; i < count; i++) {
        sprites[i].texture = (Quadword){texture, GS_TEX0_1};
        setTexels(&sprites[i], 0, 0, width, height);
    }
    return sprites;
}

/// The shadows of a layer are drawn before its balls, and layers from back to front.
static void addBalls(Packet* packet) {
    u32 random = 2024;
    Ball* ball = balls;
    for (u32 layer = 0; layer < layerCount; layer++) {
        u32 count = layers[layer].balls;
        u32 size = ballSizes[layer];
        Sprite* shadows = reserveSprites(packet, count, shadowTexture(layer), size, shadowHeight(size));
        Sprite* sprites = reserveSprites(packet, count, 0, size, size);
        for (u32 i = 0; i < count; i++, ball++) {
            random = random * 1664525 + 1013904223;
            s32 flight = (s32)(i * 29 % 64);
            s32 speed = (s32)(100 + (random >> 24) + 60 * layer);
            ball->layer = layer;
            ball->colour = (i + layer) % ballColours;
            ball->x = (s32)((screenWidth - size) * i / count) << 8;
            ball->speedX = (random >> 16 & 1) != 0 ? speed : -speed;
            ball->speedUp = layers[layer].bounce - layers[layer].gravity * flight;
            ball->height = flight * (layers[layer].bounce + ball->speedUp) / 2;
            ball->spin = random >> 12;
            ball->shadow = &shadows[i];
            ball->sprite = &sprites[i];
        }
    }
}

static void buildPacket(Packet* packet) {
    packetRegister(packet, GS_TEST_1, gsTestAlpha(ATST_GEQUAL, 0x80, 0));
    packetRegister(packet, GS_FRAME_1, 0);
    frameRegister = packet->memory + packet->count - 1;
    packetRegister(packet, GS_BITBLTBUF, 0);
    moveRegister = packet->memory + packet->count - 1;
    packetRegister(packet, GS_TRXPOS, gsTrxpos(0, 0, 0, 0));
    packetRegister(packet, GS_TRXREG, gsTrxreg(frameWidth64 * 64, screenHeight));
    packetRegister(packet, GS_TRXDIR, TRXDIR_LOCAL_TO_LOCAL);

    packetRegister(packet, GS_PRIM, PRIM_SPRITE);
    packetOpen(packet, floorRegisters, floorRegisterCount);
    lines = (FloorLine*)reserve(packet, floorLines * floorRegisterCount);

    packetRegister(packet, GS_PRIM, PRIM_SPRITE | PRIM_TEXTURE | PRIM_UV);
    packetOpen(packet, spriteRegisters, spriteRegisterCount);
    addBalls(packet);
    logoSprites = reserveSprites(packet, logoLetters, logoTexture(), logoWidth, logoHeight);
    for (u32 i = 0; i < logoLetters; i++)
        setTexels(&logoSprites[i], logoLeft(i), logoTop(i), logoWidth, logoHeight);
    textSprites = reserveSprites(packet, textLetters, fontTexture(), letterWidth, letterHeight);
    packetSize = packet->count;
}

static void fillWave(void) {
    for (u32 i = 0; i < 256; i++)
        wave[i] = (s8)toInteger(64.5f * sine(3.14159265f / 128.0f * toRealUnsigned(i)));
}

/// The floor moves towards the viewer: its rows are evenly spaced, and move by a row every 32 frames.
static void moveFloor(u32 time) {
    enum { rows = screenHeight - horizon, unit = 32 };
    for (u32 i = 0; i < floorLines; i++) {
        u32 below = rows * unit / (i * unit + 2 * unit - 1 - time % unit);
        u32 colour = floorColour(below);
        lines[i].colour.low = (u64)(colour >> 8 & 0xFF) << 32 | (colour & 0xFF);
        lines[i].colour.high = (u64)0x80 << 32 | (colour >> 16 & 0xFF);
        lines[i].from.low = position(-1, horizon + (s32)below);
        lines[i].to.low = position(screenWidth, horizon + (s32)below + 1);
    }
}

static void moveBall(Ball* ball) {
    u32 layer = ball->layer;
    u32 size = ballSizes[layer];
    ball->x += ball->speedX;
    if (ball->x < 0 || ball->x > (s32)(screenWidth - size) << 8) {
        ball->speedX = -ball->speedX;
        ball->x += ball->speedX;
    }
    ball->speedUp -= layers[layer].gravity;
    ball->height += ball->speedUp;
    if (ball->height < 0) {
        ball->height = 0;
        ball->speedUp = layers[layer].bounce;
    }
    ball->spin += (u32)(ball->speedX >> 2);

    s32 x = ball->x >> 8;
    s32 floor = layers[layer].floor;
    ball->sprite->texture.low = ballTexture(layer, ball->colour, ball->spin >> 8 & (spinSteps - 1));
    place(ball->sprite, x, floor - (s32)size - (ball->height >> 8), size, size);
    // Shadows stay in even columns so that their texels do not move on the screen and flicker.
    place(ball->shadow, (x & -2) + (s32)(size / 8 & -2u), floor - (s32)shadowHeight(size) / 2, size,
          shadowHeight(size));
}

static void moveText(u32 time) {
    u32 scrolled = time * 3 / 2;
    const char* character = text + scrolled / letterWidth % (sizeof text - 1);
    s32 x = -(s32)(scrolled % letterWidth);
    for (u32 i = 0; i < textLetters; i++, x += letterWidth) {
        u32 index = (u32)(*character++ - ' ');
        if (*character == 0)
            character = text;
        setTexels(&textSprites[i], letterLeft(index), letterTop(index), letterWidth, letterHeight);
        place(&textSprites[i], x, 214 + (wave[(u32)(x + (s32)time * 3) & 255] >> 3), letterWidth,
              letterHeight);
    }
}

static void moveLogo(u32 time) {
    enum { advance = 40, left = (screenWidth - 4 * advance) / 2 + 4 };
    for (u32 i = 0; i < logoLetters; i++)
        place(&logoSprites[i], left + (s32)i * advance, 22 + (wave[(time * 3 - i * 24) & 255] >> 4),
              logoWidth, logoHeight);
}

/// The parts that are the same in every frame.
static void setUpDrawing(void) {
    Packet packet = packetIn(memory, sizeof memory / sizeof memory[0]);
    packetRegister(&packet, GS_PRMODECONT, 1);
    packetRegister(&packet, GS_XYOFFSET_1, gsXyoffset(origin - 1, origin));
    packetRegister(&packet, GS_SCISSOR_1, gsScissor(0, 0, screenWidth + 1, screenHeight));
    packetSend(&packet);
}

int main(void) {
    // Black until the first frame is drawn.
    writeDevice64(GS_DISPLAY1, gsDisplay(screenWidth, screenHeight));
    writeDevice64(GS_DISPFB1, gsDispfb(0, frameWidth64, PSM_32, 0, 0));
    writeDevice64(GS_PMODE, gsPmode(1));
    setUpDrawing();
    drawBackground();
    uploadTextures();
    fillWave();
    Packet packet = packetIn(memory, sizeof memory / sizeof memory[0]);
    buildPacket(&packet);
    packetSend(&packet);  // draws nothing visible, but closes the last tag

    u32 page = 0;
    for (u32 time = 0;; time++) {
        moveFloor(time);
        for (u32 i = 0; i < ballCount; i++)
            moveBall(&balls[i]);
        moveText(time);
        moveLogo(time);

        frameRegister->low = gsFrame(page, frameWidth64, PSM_32, 0);
        moveRegister->low =
            gsBitbltbuf(backgroundPage * 32, frameWidth64, PSM_32, page * 32, frameWidth64, PSM_32);
        dmaSend(memory, packetSize);
        writeDevice64(GS_DISPFB1, gsDispfb(page, frameWidth64, PSM_32, 0, 0));
        page ^= framePages;
        waitSteps(stepsPerFrame - stepsPerUpdate);
    }
}
