// The general registers: their addresses, the write, and the choice of the drawing context.
#pragma once

#include "base/types.h"

namespace tarn {

/// General-register addresses (A+D numbering). Of the registers that both contexts have, context 2's
/// address is the one after.
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

/// Points the current-context pointers at the records of context 0 or 1.
void gsSetCtxt(u32 context);

/// One general-register write. Unknown addresses store nothing; every write ends with gsSetCtxt of the
/// current primitive's context. Writes of XYZ registers draw, a write of TRXDIR may copy, before it returns.
void GSwrite(u64 value, u32 address);

}  // namespace tarn
