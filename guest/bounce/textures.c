// The textures, all computed: balls with 8 bits per texel; shadows, font and logo with 4.
//
// A ball spins although its texels never change. A texel holds a longitude (16 steps from one white patch to
// the next) and a shade (16 steps). The palette colours patches of longitudes, and starts one longitude later
// with each step of the spin, so it is a window into a longer table.
#include "bounce.h"

const u32 ballSizes[layerCount] = {22, 38, 60};
const char logo[] = "TARN";

// In blocks of 64 words. All textures are 64 texels wide: rows of 64 or 32 bytes.
enum {
    textureBlock = 4480,
    ballBlocks = 16,
    shadowBlocks = 4,
    ballBase = textureBlock,
    shadowBase = ballBase + layerCount * ballBlocks,
    fontBase = shadowBase + layerCount * shadowBlocks,
    logoBase = fontBase + 32,
    ballPaletteBase = logoBase + 32,
    fontPaletteBase = ballPaletteBase + ballColours * 32,
    logoPaletteBase = fontPaletteBase + 1,
    shadowPaletteBase = logoPaletteBase + 1
};

/// Palettes start at blocks, which hold 4 longitudes: four tables, each a longitude ahead of the one before.
enum { shades = 16, longitudesPerBlock = 64 / shades, tableBlocks = 8 };

enum { OPAQUE = 0x80000000, shadowInk = 15 };

static u32 mix(u32 a, u32 b) { return ((a & 0xFEFEFE) + (b & 0xFEFEFE)) / 2; }

/// A colour in a shade: 0 is transparent, the highlight is above 12.
static u32 shaded(u32 colour, u32 shade) {
    if (shade == 0)
        return 0;
    u32 result = 0;
    for (u32 shift = 0; shift < 24; shift += 8) {
        u32 channel = (colour >> shift & 0xFF) * (shade < 12 ? shade + 1 : 13) / 13;
        if (shade > 12)
            channel += (shade - 12) * 40;
        result |= (channel < 255 ? channel : 255) << shift;
    }
    return OPAQUE | result;
}

static void uploadBallPalettes(void) {
    static const u32 colours[ballColours] = {0x3020E8, 0xF09010, 0x20B838, 0x10A8F8, 0xD838B8};
    static u32 table[2 * spinSteps][shades] __attribute__((aligned(16)));
    static u32 patches[3][shades];
    for (u32 colour = 0; colour < ballColours; colour++) {
        for (u32 shade = 0; shade < shades; shade++) {
            patches[0][shade] = shaded(0xF8F8F8, shade);
            patches[1][shade] = shaded(colours[colour], shade);
            patches[2][shade] = shaded(mix(0xF8F8F8, colours[colour]), shade);
        }
        // White and coloured patches of 7 longitudes, with one mixed longitude between them.
        for (u32 i = 0; i < 2 * spinSteps; i++)
            memcpy(table[i], patches[i % 8 == 0 ? 2 : i / 8 % 2], sizeof table[i]);
        for (u32 ahead = 0; ahead < longitudesPerBlock; ahead++)
            uploadImage(table[ahead], 64, sizeof table / 256 - (ahead != 0),
                        ballPaletteBase + (colour * longitudesPerBlock + ahead) * tableBlocks, 1, 0, 0);
    }
}

u64 ballTexture(u32 layer, u32 colour, u32 spin) {
    u32 table = colour * longitudesPerBlock + spin % longitudesPerBlock;
    u32 palette = ballPaletteBase + table * tableBlocks + spin / longitudesPerBlock;
    return gsTex0(ballBase + layer * ballBlocks, 1, PSM_8, 6, 6, 1, TFX_DECAL) |
           gsTex0Palette(palette, PSM_32, 0);
}

/// Arc sines in 64ths of pi, and legs of right triangles with hypotenuse 64, both by a leg of 0 to 64.
static u8 arcSine[65];
static u8 otherLeg[65];

static void fillArcTables(void) {
    u32 arc = 0;
    u32 leg = 64;
    f32 next = 0;
    for (u32 i = 0; i <= 64; i++) {
        while (arc < 32 && next < toRealUnsigned(i)) {
            arc++;
            next = 64.0f * sine(3.14159265f / 64.0f * toRealUnsigned(arc));
        }
        while (leg * leg > 64 * 64 - i * i)
            leg--;
        arcSine[i] = (u8)arc;
        otherLeg[i] = (u8)leg;
    }
}

static s32 arcOf(s32 leg) {
    u32 size = (u32)(leg < 0 ? -leg : leg);
    s32 arc = arcSine[size < 64 ? size : 64];
    return leg < 0 ? -arc : arc;
}

/// The texel of a ball of radius 64 at (x, y) from its centre.
static u32 ballTexel(s32 x, s32 y) {
    // The axis leans to the right.
    s32 across = (x * 61 + y * 19) / 64;
    s32 along = (y * 61 - x * 19) / 64;
    u32 leg = otherLeg[along < 0 ? -along : along];
    s32 longitude = arcOf(across * 64 / (s32)(leg != 0 ? leg : 1));
    if ((arcOf(along) & 8) != 0)
        longitude += spinSteps / 2;
    // Light comes from the upper left.
    s32 distance = (x + 22) * (x + 22) + (y + 28) * (y + 28);
    s32 shade = 15 - distance / 640;
    u32 index = ((u32)longitude % spinSteps) * shades + (u32)(shade < 1 ? 1 : shade);
    // Loading a palette exchanges entries 8-15 and 16-23 of every 32: exchanged here, the tables can be
    // plain.
    return (index & 0xE7) | (index & 8) << 1 | (index & 16) >> 1;
}

static void uploadBall(u32 layer) {
    static u8 texels[64][64] __attribute__((aligned(16)));
    s32 size = (s32)ballSizes[layer];
    memset(texels, 0, sizeof texels);
    for (s32 y = 0; y < size; y++)
        for (s32 x = 0; x < size; x++) {
            s32 dx = 2 * x + 1 - size;
            s32 dy = 2 * y + 1 - size;
            if (dx * dx + dy * dy < size * size)
                texels[y][x] = (u8)ballTexel(dx * 64 / size, dy * 64 / size);
        }
    uploadImage((const u32*)texels, 64, sizeof texels / 256, ballBase + layer * ballBlocks, 1, 0, 0);
}

/// 4-bit texels under construction, the even one of two in the low half of a byte.
static u8 nibbles[256][32] __attribute__((aligned(16)));

static void setTexel(u32 x, u32 y, u32 index) {
    u8* pair = &nibbles[y][x / 2];
    *pair = (u8)((x & 1) != 0 ? (*pair & 0x0F) | index << 4 : (*pair & 0xF0) | index);
}

static void uploadNibbles(u32 block, u32 rows) {
    uploadImage((const u32*)nibbles, 64, rows / 8, block, 1, 0, 0);
    memset(nibbles, 0, sizeof nibbles);
}

/// Ellipses of every other texel, so that the floor shows through.
static void uploadShadow(u32 layer) {
    s32 width = (s32)ballSizes[layer];
    s32 height = (s32)shadowHeight(ballSizes[layer]);
    for (s32 y = 0; y < height; y++)
        for (s32 x = 0; x < width; x++) {
            s32 dx = 2 * x + 1 - width;
            s32 dy = (2 * y + 1 - height) * 4;
            if (dx * dx + dy * dy < width * width && ((x + y) & 1) == 0)
                setTexel((u32)x, (u32)y, shadowInk);
        }
    uploadNibbles(shadowBase + layer * shadowBlocks, 16);
}

u64 shadowTexture(u32 layer) {
    return gsTex0(shadowBase + layer * shadowBlocks, 1, PSM_4, 6, 4, 1, TFX_DECAL) |
           gsTex0Palette(shadowPaletteBase, PSM_32, 0);
}

/// A character with its shadow. Its texels are 1 at the top to 14 at the bottom.
static void drawLetter(u32 left, u32 top, u32 scale, char character) {
    const u8* rows = glyphOf(character);
    u32 drop = (scale + 2) / 4;
    for (u32 isFace = 0; isFace < 2; isFace++)
        for (u32 y = 0; y < glyphHeight * scale; y++)
            for (u32 column = 0; column < glyphWidth; column++) {
                if ((rows[y / scale] << column & 0x10) == 0)
                    continue;
                for (u32 x = column * scale; x < (column + 1) * scale; x++) {
                    if (isFace)
                        setTexel(left + x, top + y, 1 + 2 * y / scale);
                    else
                        setTexel(left + x + drop, top + y + drop, shadowInk);
                }
            }
}

static void uploadFont(void) {
    for (u32 i = 0; i < 64; i++)
        drawLetter(letterLeft(i), letterTop(i), 2, (char)(' ' + i));
    uploadNibbles(fontBase, 256);
}

static void uploadLogo(void) {
    for (u32 i = 0; logo[i] != 0; i++)
        drawLetter(logoLeft(i), logoTop(i), 6, logo[i]);
    uploadNibbles(logoBase, 2 * logoHeight);
}

u64 fontTexture(void) {
    return gsTex0(fontBase, 1, PSM_4, 6, 8, 1, TFX_DECAL) | gsTex0Palette(fontPaletteBase, PSM_32, 0);
}

u64 logoTexture(void) {
    return gsTex0(logoBase, 1, PSM_4, 6, 7, 1, TFX_DECAL) | gsTex0Palette(logoPaletteBase, PSM_32, 0);
}

/// Colours 0 (transparent) to 15 (the shadow).
static void uploadPalette(u32 block, const u32* colours) {
    static u32 palette[64] __attribute__((aligned(16)));
    for (u32 i = 1; i < 16; i++)
        palette[i] = OPAQUE | colours[i];
    uploadImage(palette, 64, 1, block, 1, 0, 0);
}

void uploadTextures(void) {
    static const u32 fontColours[16] = {0,        0xFFFFFF, 0xFFFFFF, 0xE8FFFF, 0xC8FCFF, 0xA0F4FF,
                                        0x78E8FF, 0x50D8FF, 0x38C0FF, 0x28A8FF, 0x2090FF, 0x2078FF,
                                        0x2860F8, 0x3848E8, 0x4038D0, 0x301020};
    static const u32 logoColours[16] = {0,        0xFFE8C8, 0xFFD090, 0xF8B060, 0xF09038, 0xE87820,
                                        0xF8C898, 0xFFFFFF, 0x401838, 0x602070, 0x8028A8, 0xA038D8,
                                        0xC060F0, 0xD890FF, 0xF0C8FF, 0x301020};
    static const u32 shadowColours[16] = {[shadowInk] = 0x080004};
    fillArcTables();
    for (u32 layer = 0; layer < layerCount; layer++) {
        uploadBall(layer);
        uploadShadow(layer);
    }
    uploadFont();
    uploadLogo();
    uploadBallPalettes();
    uploadPalette(fontPaletteBase, fontColours);
    uploadPalette(logoPaletteBase, logoColours);
    uploadPalette(shadowPaletteBase, shadowColours);
}
