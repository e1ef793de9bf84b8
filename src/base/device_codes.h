// Addresses and codes of the devices.
#pragma once

#include "base/types.h"

namespace tarn {

inline constexpr u32 quadwordBytes = 16;

/// Numbers of the coprocessor 0 registers that are used.
namespace cp0_register {
inline constexpr u8 BadVAddr = 8;
inline constexpr u8 Count = 9;
inline constexpr u8 Status = 12;
inline constexpr u8 Cause = 13;
inline constexpr u8 PRId = 15;
}  // namespace cp0_register

// DMA controller.

inline constexpr unsigned dmaChannelCount = 10;
inline constexpr unsigned gifChannel = 2;   ///< to the GS
inline constexpr unsigned sif0Channel = 5;  ///< from the I/O processor

/// DMA registers by their offset in the special area.
namespace dma_register {
enum Offset : u32 {
    D2_CHCR = 0xA000,
    D2_MADR = 0xA010,
    D2_QWC = 0xA020,
    D2_TADR = 0xA030,
    D2_ASR0 = 0xA040,
    D2_ASR1 = 0xA050,
    D2_SADR = 0xA080,
    D5_CHCR = 0xC000,
    D5_MADR = 0xC010,
    D5_QWC = 0xC020,
    D_STAT = 0xE010,
};
}  // namespace dma_register

/// Fields of a channel control register (CHCR).
namespace dma_control {
inline constexpr u64 fromMemory = 0x1;     ///< DIR
inline constexpr u64 chainMode = 0x4;      ///< MOD 1
inline constexpr u64 tagInterrupt = 0x80;  ///< TIE
inline constexpr u64 start = 0x100;        ///< STR
}  // namespace dma_control

// Serial port.

inline constexpr u32 consoleTransmit = 0xF180;  ///< data register: offset in the special area

// Graphics Synthesizer.

inline constexpr u32 gsAreaFirst = 0x12000000;  ///< guest addresses of the privileged registers
inline constexpr u32 gsAreaLast = 0x12001080;

/// Privileged registers by guest address.
namespace gs_privileged {
enum Address : u32 {
    PMODE = 0x12000000,
    SMODE2 = 0x12000020,
    DISPFB1 = 0x12000070,
    DISPLAY1 = 0x12000080,
    DISPFB2 = 0x12000090,
    DISPLAY2 = 0x120000A0,
    FIELD = 0x12000400,  ///< not a register of the hardware: vertical-blank pacing reads the field here
    CSR = 0x12001000,
    IMR = 0x12001010,
};
}  // namespace gs_privileged

inline constexpr u32 csrVerticalBlank = 8;  ///< VSINT of CSR
inline constexpr u64 fieldBit = 0x2000;     ///< of FIELD

/// General registers, in A+D numbering. Context 2's address of a register follows context 1's.
namespace gs_register {
enum Address : u32 {
    PRIM = 0x00,
    RGBAQ = 0x01,
    ST = 0x02,
    UV = 0x03,
    XYZF2 = 0x04,
    XYZ2 = 0x05,
    TEX0_1 = 0x06,
    TEX0_2 = 0x07,
    CLAMP_1 = 0x08,
    CLAMP_2 = 0x09,
    FOG = 0x0A,
    XYZF3 = 0x0C,
    XYZ3 = 0x0D,
    AD = 0x0E,  ///< only as a descriptor: the PACKED data name the register
    TEX1_1 = 0x14,
    TEX1_2 = 0x15,
    TEX2_1 = 0x16,
    TEX2_2 = 0x17,
    XYOFFSET_1 = 0x18,
    XYOFFSET_2 = 0x19,
    PRMODECONT = 0x1A,
    PRMODE = 0x1B,
    TEXCLUT = 0x1C,
    SCANMSK = 0x22,
    MIPTBP1_1 = 0x34,
    MIPTBP1_2 = 0x35,
    MIPTBP2_1 = 0x36,
    MIPTBP2_2 = 0x37,
    TEXA = 0x3B,
    FOGCOL = 0x3D,
    SCISSOR_1 = 0x40,
    SCISSOR_2 = 0x41,
    ALPHA_1 = 0x42,
    ALPHA_2 = 0x43,
    DTHE = 0x45,
    COLCLAMP = 0x46,
    TEST_1 = 0x47,
    TEST_2 = 0x48,
    PABE = 0x49,
    FBA_1 = 0x4A,
    FBA_2 = 0x4B,
    FRAME_1 = 0x4C,
    FRAME_2 = 0x4D,
    ZBUF_1 = 0x4E,
    ZBUF_2 = 0x4F,
    BITBLTBUF = 0x50,
    TRXPOS = 0x51,
    TRXREG = 0x52,
    TRXDIR = 0x53,
};
}  // namespace gs_register

/// FLG of a GIF tag: the form of its data. Both image codes have the same meaning.
enum class GifForm : u32 { Packed = 0, Reglist = 1, Image = 2, ImageToo = 3 };

/// PRIM: the primitive's type.
enum class PrimitiveType : u32 {
    Point = 0,
    Line = 1,
    LineStrip = 2,
    Triangle = 3,
    TriangleStrip = 4,
    TriangleFan = 5,
    Sprite = 6,
    None = 7,
};

/// Formats of pixels, texels and palette entries (PSM, CPSM) that are handled specially.
namespace pixel_format {
inline constexpr u32 PSMCT32 = 0x00;
inline constexpr u32 PSMCT24 = 0x01;
inline constexpr u32 PSMCT16 = 0x02;
inline constexpr u32 PSMT8 = 0x13;
inline constexpr u32 PSMT4 = 0x14;
}  // namespace pixel_format

/// TEX0.TFX: modulate; the other functions draw as decals.
inline constexpr u32 textureModulate = 0;

/// TRXDIR: into local memory from the GIF, and within local memory.
inline constexpr u32 hostToLocal = 0;
inline constexpr u32 localToLocal = 2;

/// TEST.ATST: how the alpha of a colour compares with AREF.
enum class AlphaTest : u32 {
    Never = 0,
    Always = 1,
    Less = 2,
    LessOrEqual = 3,
    Equal = 4,
    GreaterOrEqual = 5,
    Greater = 6,
    NotEqual = 7,
};

/// TEST.ZTST: how the depth of a pixel compares with the stored one.
enum class DepthTest : u32 { Never = 0, Always = 1, GreaterOrEqual = 2, Greater = 3 };

/// ALPHA.A, B and D: where a colour of the blending equation comes from; other codes mean black.
inline constexpr u32 blendSource = 0;
inline constexpr u32 blendDestination = 1;

/// ALPHA.C: where its factor comes from; other codes mean 0.
inline constexpr u32 factorSource = 0;
inline constexpr u32 factorDestination = 1;
inline constexpr u32 factorFixed = 2;

}  // namespace tarn
