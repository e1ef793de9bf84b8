// The Graphics Synthesizer's registers: numbers, and functions that build values from fields.
//
// Local memory is 4 MB, one 32-bit word per pixel in every format. Frame and depth buffers start at pages
// of 2048 words, textures, palettes and transfers at blocks of 64 words; widths are in units of 64 pixels.
// Colours are words with red in bits 0-7, then green, blue, alpha (0x80 is opaque).
#pragma once

#include "types.h"

/// General registers, written through packets.
enum GsRegister {
    GS_PRIM = 0x00,
    GS_RGBAQ = 0x01,
    GS_ST = 0x02,
    GS_UV = 0x03,
    GS_XYZF2 = 0x04,
    GS_XYZ2 = 0x05,
    GS_TEX0_1 = 0x06,
    GS_TEX0_2 = 0x07,
    GS_CLAMP_1 = 0x08,
    GS_CLAMP_2 = 0x09,
    GS_FOG = 0x0A,
    GS_XYZF3 = 0x0C,
    GS_XYZ3 = 0x0D,
    GS_AD = 0x0E,  ///< packed format: the data name the register
    GS_TEX1_1 = 0x14,
    GS_TEX1_2 = 0x15,
    GS_XYOFFSET_1 = 0x18,
    GS_XYOFFSET_2 = 0x19,
    GS_PRMODECONT = 0x1A,
    GS_PRMODE = 0x1B,
    GS_TEXCLUT = 0x1C,
    GS_TEXA = 0x3B,
    GS_FOGCOL = 0x3D,
    GS_SCISSOR_1 = 0x40,
    GS_SCISSOR_2 = 0x41,
    GS_ALPHA_1 = 0x42,
    GS_ALPHA_2 = 0x43,
    GS_TEST_1 = 0x47,
    GS_TEST_2 = 0x48,
    GS_FRAME_1 = 0x4C,
    GS_FRAME_2 = 0x4D,
    GS_ZBUF_1 = 0x4E,
    GS_ZBUF_2 = 0x4F,
    GS_BITBLTBUF = 0x50,
    GS_TRXPOS = 0x51,
    GS_TRXREG = 0x52,
    GS_TRXDIR = 0x53
};

/// Privileged registers, written by the processor with writeDevice64.
enum GsPrivilegedRegister {
    GS_PMODE = 0x12000000,
    GS_SMODE2 = 0x12000020,
    GS_DISPFB1 = 0x12000070,
    GS_DISPLAY1 = 0x12000080,
    GS_DISPFB2 = 0x12000090,
    GS_DISPLAY2 = 0x120000A0,
    GS_CSR = 0x12001000
};

enum PixelFormat { PSM_32 = 0, PSM_24 = 1, PSM_16 = 2, PSM_8 = 0x13, PSM_4 = 0x14 };

enum PrimitiveType {
    PRIM_POINT = 0,
    PRIM_LINE = 1,
    PRIM_LINE_STRIP = 2,
    PRIM_TRIANGLE = 3,
    PRIM_TRIANGLE_STRIP = 4,
    PRIM_TRIANGLE_FAN = 5,
    PRIM_SPRITE = 6,
    // Attributes, added to a type:
    PRIM_GOURAUD = 1 << 3,
    PRIM_TEXTURE = 1 << 4,
    PRIM_FOG = 1 << 5,
    PRIM_BLEND = 1 << 6,
    PRIM_ANTIALIAS = 1 << 7,
    PRIM_UV = 1 << 8,  ///< texture coordinates from UV, not from ST and Q
    PRIM_CONTEXT_2 = 1 << 9
};

enum TextureFunction { TFX_MODULATE = 0, TFX_DECAL = 1, TFX_HIGHLIGHT = 2, TFX_HIGHLIGHT2 = 3 };

enum TestMethod {
    ATST_NEVER = 0,
    ATST_ALWAYS = 1,
    ATST_LESS = 2,
    ATST_LEQUAL = 3,
    ATST_EQUAL = 4,
    ATST_GEQUAL = 5,
    ATST_GREATER = 6,
    ATST_NOTEQUAL = 7,
    ZTST_NEVER = 0,
    ZTST_ALWAYS = 1,
    ZTST_GEQUAL = 2,
    ZTST_GREATER = 3
};

static inline u32 gsColour(u32 r, u32 g, u32 b, u32 a) { return r | g << 8 | b << 16 | a << 24; }

/// `q` is the bit pattern of a float; 0x3F800000 is 1.
static inline u64 gsRgbaq(u32 colour, u32 q) { return (u64)q << 32 | colour; }

/// Bit patterns of floats.
static inline u64 gsSt(u32 s, u32 t) { return (u64)t << 32 | s; }

/// Texels, with 4 bits of fraction.
static inline u64 gsUv(u32 u, u32 v) { return v << 16 | u; }

/// Pixels with 4 bits of fraction, the drawing offset included.
static inline u64 gsXyz(u32 x, u32 y, u32 z) { return (u64)z << 32 | (y & 0xFFFF) << 16 | (x & 0xFFFF); }

static inline u64 gsFrame(u32 page, u32 width64, u32 format, u32 mask) {
    return (u64)mask << 32 | format << 24 | width64 << 16 | page;
}

/// `masked` 1: depth is tested but not written.
static inline u64 gsZbuf(u32 page, u32 format, u32 masked) { return (u64)masked << 32 | format << 24 | page; }

/// `widthLog2`, `heightLog2`: texture size as powers of two, up to 10. `alpha` 1: texels carry alpha.
static inline u64 gsTex0(u32 block, u32 width64, u32 format, u32 widthLog2, u32 heightLog2, u32 alpha,
                         u32 function) {
    return (u64)(heightLog2 >> 2 | alpha << 2 | function << 3) << 32 |
           ((heightLog2 & 3) << 30 | widthLog2 << 26 | format << 20 | width64 << 14 | block);
}

/// The palette of an 8-bit or 4-bit texture: added to gsTex0.
static inline u64 gsTex0Palette(u32 block, u32 format, u32 csm) {
    return (u64)(block << 5 | format << 19 | csm << 23) << 32;
}

/// Repeat (0) or clamp (1) by coordinate.
static inline u64 gsClamp(u32 wms, u32 wmt) { return wmt << 2 | wms; }

/// Whole pixels.
static inline u64 gsXyoffset(u32 x, u32 y) { return (u64)(y << 4) << 32 | x << 4; }

/// Bounds are inclusive.
static inline u64 gsScissor(u32 x0, u32 y0, u32 x1, u32 y1) {
    return (u64)(y1 << 16 | y0) << 32 | (x1 << 16 | x0);
}

static inline u64 gsTestAlpha(u32 method, u32 reference, u32 fail) {
    return fail << 12 | reference << 4 | method << 1 | 1;
}

static inline u64 gsTestDepth(u32 method) { return method << 17 | 1 << 16; }

/// (A - B) * C + D, each 0 to 3: source, destination, fixed or zero.
static inline u64 gsAlpha(u32 a, u32 b, u32 c, u32 d, u32 fix) {
    return (u64)fix << 32 | d << 6 | c << 4 | b << 2 | a;
}

static inline u64 gsTexa(u32 alpha0, u32 transparentBlack, u32 alpha1) {
    return (u64)alpha1 << 32 | transparentBlack << 15 | alpha0;
}

static inline u64 gsTexclut(u32 width64, u32 offsetU, u32 offsetV) {
    return offsetV << 12 | offsetU << 6 | width64;
}

static inline u64 gsBitbltbuf(u32 sourceBlock, u32 sourceWidth64, u32 sourceFormat, u32 block, u32 width64,
                              u32 format) {
    return (u64)(format << 24 | width64 << 16 | block) << 32 |
           (sourceFormat << 24 | sourceWidth64 << 16 | sourceBlock);
}

static inline u64 gsTrxpos(u32 sourceX, u32 sourceY, u32 x, u32 y) {
    return (u64)(y << 16 | x) << 32 | (sourceY << 16 | sourceX);
}

static inline u64 gsTrxreg(u32 width, u32 height) { return (u64)height << 32 | width; }

enum TransferDirection { TRXDIR_HOST_TO_LOCAL = 0, TRXDIR_LOCAL_TO_LOCAL = 2 };

/// The display circuit that is shown: 1 or 2.
static inline u64 gsPmode(u32 circuit) { return circuit; }

static inline u64 gsDispfb(u32 page, u32 width64, u32 format, u32 x, u32 y) {
    return (u64)(y << 11 | x) << 32 | format << 15 | width64 << 9 | page;
}

/// A picture of width x height pixels, unmagnified.
static inline u64 gsDisplay(u32 width, u32 height) { return (u64)((height - 1) << 12 | (width - 1)) << 32; }
