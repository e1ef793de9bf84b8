// A textured cube turns over a plain at dusk, with two moons around it: 320 x 240, double-buffered.
//
// The cube's faces are strips of small triangles with S, T and Q coordinates, because texels are interpolated
// linearly between vertices; each face is modulated by its colour in the light. The moons are flat triangles.
// Visibility is by the depth test.
#include "tarn_guest.h"

enum { width = 320, height = 240, width64 = 6, framePages = 45 };
enum { depthPage = 2 * framePages, textureBlock = 3 * framePages * 32, textureSize = 64 };
enum { cells = 4, corners = cells + 1 };

// Drawing coordinates are centred on the picture. It starts in column 1 of the frame.
enum { centreX = 2048, centreY = 2048 };

/// Handed to functions by address: by value it would travel in integer registers.
typedef struct {
    f32 x, y, z;
} Vector;

/// A point on the screen: pixels with 4 bits of fraction, depth (larger is nearer), 1 / distance.
typedef struct {
    u32 x, y, z;
    f32 q;
} Projected;

static Quadword memory[1024];
static Packet packet;

static inline Vector add(Vector a, Vector b) { return (Vector){a.x + b.x, a.y + b.y, a.z + b.z}; }
static inline Vector scaled(Vector a, f32 factor) {
    return (Vector){a.x * factor, a.y * factor, a.z * factor};
}

/// Turns about the vertical axis, then towards the eye.
static Vector turned(Vector v, f32 turn, f32 tilt) {
    f32 x = v.x * cosine(turn) + v.z * sine(turn);
    f32 z = v.z * cosine(turn) - v.x * sine(turn);
    return (Vector){x, v.y * cosine(tilt) - z * sine(tilt), v.y * sine(tilt) + z * cosine(tilt)};
}

static const f32 eyeDistance = 5.0f;

static Projected project(const Vector* v) {
    f32 q = 1.0f / (v->z + eyeDistance);
    f32 zoom = 16.0f * 260.0f * q;
    return (Projected){centreX * 16 + toInteger(v->x * zoom), centreY * 16 - toInteger(v->y * zoom),
                       toInteger(q * 8388608.0f), q};
}

/// Light from the upper left, behind the eye: 0.3 to 1.
static f32 brightness(const Vector* normal) {
    return 0.3f + 0.7f * larger(-0.48f * normal->x + 0.6f * normal->y - 0.64f * normal->z, 0.0f);
}

static u32 shade(u32 channel, f32 light) { return toInteger(toReal(channel) * light); }

/// Opens packets of vertices with what `registers` names, a colour to begin with.
static void beginPrimitive(u32 type, u64 registers, u32 registerCount) {
    packetRegister(&packet, GS_PRIM, type);
    packetOpen(&packet, registers, registerCount);
}

enum { COLOUR_XYZ2 = 0x51, COLOUR_ST_XYZ2 = 0x521 };

static void addColour(u32 colour, f32 light) {
    packetColour(&packet, shade(colour & 0xFF, light), shade(colour >> 8 & 0xFF, light),
                 shade(colour >> 16 & 0xFF, light), 0x80);
}

/// A panel with a bevelled edge, a rivet in each corner and the name across, in greys around unity.
static void makeTexture(void) {
    Canvas panel = newCanvas(textureSize, textureSize);
    for (u32 y = 0; y < textureSize; y++) {
        u32* row = canvasRow(&panel, y);
        for (u32 x = 0; x < textureSize; x++) {
            u32 grain = (x * 7 + y * 3 + (x * y >> 3)) & 15;
            row[x] = 0x80000000 | (108 + grain) * 0x010101;
        }
    }
    fillRectangle(&panel, 0, 0, textureSize, 3, 0x80E8E8E8);
    fillRectangle(&panel, 0, 0, 3, textureSize, 0x80D0D0D0);
    fillRectangle(&panel, 0, textureSize - 3, textureSize, 3, 0x80404040);
    fillRectangle(&panel, textureSize - 3, 0, 3, textureSize, 0x80505050);
    for (u32 i = 0; i < 4; i++) {
        u32 x = 6 + (i & 1) * 48;
        u32 y = 6 + (i >> 1) * 48;
        fillRectangle(&panel, x, y, 4, 4, 0x80303030);
        fillRectangle(&panel, x, y, 3, 3, 0x80F0F0F0);
    }
    drawText(&panel, 9, 25, 2, 0x80383838, "TARN");
    drawText(&panel, 8, 24, 2, 0x80FFFFFF, "TARN");
    uploadImage(panel.pixels, textureSize, textureSize, textureBlock, 1, 0, 0);
}

static void setUp(void) {
    packet = packetIn(memory, sizeof memory / sizeof memory[0]);
    makeTexture();
    packetRegister(&packet, GS_ZBUF_1, gsZbuf(depthPage, PSM_32, 0));
    packetRegister(&packet, GS_XYOFFSET_1, gsXyoffset(centreX - width / 2 - 1, centreY - height / 2));
    packetRegister(&packet, GS_SCISSOR_1, gsScissor(1, 0, width + 1, height));
    packetRegister(&packet, GS_TEX0_1, gsTex0(textureBlock, 1, PSM_32, 6, 6, 1, TFX_MODULATE));
    writeDevice64(GS_DISPLAY1, gsDisplay(width, height));
}

/// Sky and plain, a gouraud strip from the top down; and the depth buffer cleared by a sprite before it.
static void drawBackground(void) {
    static const struct {
        s32 y;
        u32 colour;
    } levels[] = {{-120, 0x401008}, {-30, 0x903848}, {36, 0x5090F8}, {40, 0x304070}, {121, 0x101808}};
    const s32 halfWidth = width / 2 + 1;
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_ALWAYS));
    packetRegister(&packet, GS_PRIM, PRIM_SPRITE);
    packetRegister(&packet, GS_XYZ2, gsXyz((centreX - halfWidth) * 16, (centreY - 120) * 16, 0));
    packetRegister(&packet, GS_XYZ2, gsXyz((centreX + halfWidth) * 16, (centreY + 121) * 16, 0));
    beginPrimitive(PRIM_TRIANGLE_STRIP | PRIM_GOURAUD, COLOUR_XYZ2, 2);
    for (u32 i = 0; i < sizeof levels / sizeof levels[0]; i++)
        for (s32 side = -halfWidth; side <= halfWidth; side += 2 * halfWidth) {
            addColour(levels[i].colour, 1.0f);
            packetXyz2(&packet, (centreX + side) * 16, (centreY + levels[i].y) * 16, 0);
        }
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_GEQUAL));
}

/// One face of the cube: its outward normal, and its texture's directions to the right and down.
static void drawFace(const Vector* normal, const Vector* right, const Vector* down, u32 colour) {
    if (!lessThan(normal->z * eyeDistance, -1.0f))
        return;  // faces away from the eye
    Projected points[corners][corners];
    for (s32 i = 0; i < corners; i++)
        for (s32 j = 0; j < corners; j++) {
            Vector across = add(scaled(*right, toReal(2 * j - cells) / cells), *normal);
            Vector point = add(across, scaled(*down, toReal(2 * i - cells) / cells));
            points[i][j] = project(&point);
        }
    f32 light = brightness(normal);
    u32 r = shade(colour & 0xFF, light);
    u32 g = shade(colour >> 8 & 0xFF, light);
    u32 b = shade(colour >> 16 & 0xFF, light);
    for (s32 i = 0; i < cells; i++) {
        beginPrimitive(PRIM_TRIANGLE_STRIP | PRIM_TEXTURE, COLOUR_ST_XYZ2, 3);
        for (s32 j = 0; j < corners; j++)
            for (s32 row = i; row <= i + 1; row++) {
                const Projected* point = &points[row][j];
                // A texel short of the whole, so that the far edge stays inside the texture.
                f32 scale = point->q * (63.0f / 64.0f / cells);
                packetColour(&packet, r, g, b, 0x80);  // each time: ST repeats the colour of its slot
                packetSt(&packet, bitsOf(toReal(j) * scale), bitsOf(toReal(row) * scale), bitsOf(point->q));
                packetXyz2(&packet, point->x, point->y, point->z);
            }
    }
}

static void drawCube(f32 turn, f32 tilt) {
    Vector x = turned((Vector){1, 0, 0}, turn, tilt);
    Vector y = turned((Vector){0, 1, 0}, turn, tilt);
    Vector z = turned((Vector){0, 0, 1}, turn, tilt);
    Vector left = scaled(x, -1), down = scaled(y, -1), front = scaled(z, -1);
    drawFace(&front, &x, &down, 0x6090E0);
    drawFace(&z, &left, &down, 0x90D060);
    drawFace(&x, &z, &down, 0xE0A050);
    drawFace(&left, &front, &down, 0x60C8E8);
    drawFace(&y, &x, &front, 0xC0C0C0);
    drawFace(&down, &x, &z, 0xA060C0);
}

/// An octahedron around a point.
static void drawMoon(const Vector* centre, f32 turn, u32 colour) {
    const f32 size = 0.36f;
    const f32 third = 0.57735027f;  // of a face's normal along each axis
    Vector axes[3] = {turned((Vector){1, 0, 0}, turn, 0.5f), turned((Vector){0, 1, 0}, turn, 0.5f),
                      turned((Vector){0, 0, 1}, turn, 0.5f)};
    Projected tips[3][2];
    for (u32 i = 0; i < 3; i++)
        for (u32 side = 0; side < 2; side++) {
            Vector tip = add(*centre, scaled(axes[i], side == 0 ? size : -size));
            tips[i][side] = project(&tip);
        }
    for (u32 face = 0; face < 8; face++) {
        Vector normal = {0, 0, 0};
        for (u32 i = 0; i < 3; i++)
            normal = add(normal, scaled(axes[i], (face >> i & 1) == 0 ? third : -third));
        beginPrimitive(PRIM_TRIANGLE, COLOUR_XYZ2, 2);
        for (u32 i = 0; i < 3; i++) {
            const Projected* tip = &tips[i][face >> i & 1];
            addColour(colour, brightness(&normal));
            packetXyz2(&packet, tip->x, tip->y, tip->z);
        }
    }
}

static void drawFrame(f32 time) {
    drawBackground();
    drawCube(time, -0.62f + 0.25f * sine(0.7f * time));
    f32 orbit = 1.3f * time;
    Vector pale = {2.1f * cosine(orbit), 0.5f * sine(orbit), 2.1f * sine(orbit)};
    drawMoon(&pale, 2.0f * time, 0xF0E8D8);
    orbit += 2.6f;
    Vector orange = {-1.9f * cosine(orbit), 0.9f * cosine(orbit), 1.9f * sine(orbit)};
    drawMoon(&orange, -3.0f * time, 0x50B0FF);
}

int main(void) {
    setUp();
    u32 page = 0;
    for (f32 time = 0.6f;; time += 0.035f) {
        packetRegister(&packet, GS_FRAME_1, gsFrame(page, width64, PSM_32, 0));
        drawFrame(time);
        packetSend(&packet);
        writeDevice64(GS_DISPFB1, gsDispfb(page, width64, PSM_32, 0, 0));
        writeDevice64(GS_PMODE, gsPmode(1));
        page = framePages - page;
    }
}
