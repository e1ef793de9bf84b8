// The general registers: decoding of fields, and the side effects of writes.
#include "gs/registers.h"

#include "base/bits.h"
#include "gs/local_memory.h"
#include "gs/transfer.h"
#include "gs/vertex_registers.h"

#include <algorithm>

namespace tarn {
namespace {

// Decoders, one per register layout. They return bases in words and widths in pixels.

GsFrame decodeFrame(u64 value) {
    const u32 fbw = bits(value, 16, 6) * 64;
    return {
        .fbp = bits(value, 0, 9) * 2048,
        .fbw = fbw,
        .maxRows = maxRowsOf(fbw),
        .psm = bits(value, 24, 6),
        .fbmsk = bits(value, 32, 32),
    };
}

GsZbuf decodeZbuf(u64 value) {
    return {
        .zbp = bits(value, 0, 9) * 2048,
        .psm = bits(value, 24, 4),
        .zmsk = bit(value, 32),
    };
}

/// A texture's size from its exponent; the largest is 1024.
u32 textureSize(u32 exponent) { return u32{1} << std::min(exponent, u32{10}); }

GsTex0 decodeTex0(u64 value) {
    return {
        .tbp0 = bits(value, 0, 14) * 64,
        .tbw = bits(value, 14, 6) * 64,
        .psm = bits(value, 20, 6),
        .tw = textureSize(bits(value, 26, 4)),
        .th = textureSize(bits(value, 30, 4)),
        .tcc = bit(value, 34),
        .tfx = bits(value, 35, 2),
        .cbp = bits(value, 37, 14) * 64,
        .cpsm = bits(value, 51, 4),
        .csm = bit(value, 55),
    };
}

GsTex1 decodeTex1(u64 value) {
    return {
        .lcm = bit(value, 0),
        .mxl = bits(value, 2, 3),
        .mmag = bit(value, 5),
        .mmin = bits(value, 6, 3),
        .mtba = bit(value, 9),
        .l = bits(value, 19, 2),
        .k = bits(value, 36, 8),
    };
}

GsTex2 decodeTex2(u64 value) {
    return {
        .psm = bits(value, 20, 6),
        .cbp = bits(value, 37, 14),
        .cpsm = bits(value, 51, 4),
        .csm = bit(value, 55),
        .csa = bits(value, 56, 5),
        .cld = bits(value, 61, 3),
    };
}

GsClamp decodeClamp(u64 value) {
    return {
        // Only the upper bit of the modes is kept: repeat and clamp are 0, both region modes are 2.
        .wms = bits(value, 0, 2) & 2, .wmt = bits(value, 2, 2) & 2, .minu = bits(value, 4, 10),
        .maxu = bits(value, 14, 10),  .minv = bits(value, 24, 10),  .maxv = bits(value, 34, 10),
    };
}

GsMipTbp decodeMipTbp(u64 value) {
    return {
        .tbp1 = bits(value, 0, 14),
        .tbp2 = bits(value, 20, 14),
        .tbp3 = bits(value, 40, 14),
        .tbw1 = bits(value, 14, 6),
        .tbw2 = bits(value, 34, 6),
        .tbw3 = bits(value, 54, 6),
    };
}

GsOffset decodeOffset(u64 value) {
    return {
        .ofx = bits(value, 4, 12),
        .ofy = bits(value, 36, 12),
    };
}

GsScissor decodeScissor(u64 value) {
    return {
        .scax0 = bits(value, 0, 11),
        .scay0 = bits(value, 32, 11),
        .scax1 = bits(value, 16, 11),
        .scay1 = bits(value, 48, 11),
    };
}

GsAlpha decodeAlpha(u64 value) {
    return {
        .a = bits(value, 0, 2),
        .b = bits(value, 2, 2),
        .c = bits(value, 4, 2),
        .d = bits(value, 6, 2),
        .fix = bits(value, 32, 8),
    };
}

GsTest decodeTest(u64 value) {
    return {
        .ate = bit(value, 0),
        .atst = bits(value, 1, 3),
        .aref = bits(value, 4, 8),
        .afail = bits(value, 12, 2),
        .date = bit(value, 14),
        .datm = bit(value, 15),
        .zte = bit(value, 16),
        .ztst = bits(value, 17, 2),
    };
}

GsTexa decodeTexa(u64 value) {
    return {
        .ta0 = bits(value, 0, 8),
        .ta1 = bits(value, 32, 8),
        .aem = bit(value, 15),
    };
}

GsTexClut decodeTexClut(u64 value) {
    return {
        .cbw = bits(value, 0, 6),
        .cou = bits(value, 6, 6),
        .cov = bits(value, 12, 10),
    };
}

/// One half of BITBLTBUF, shifted down to bit 0.
GsTransferBuf decodeTransferBuf(u64 value) {
    const u32 bw = bits(value, 16, 6) * 64;
    return {
        .bp = bits(value, 0, 14) * 64,
        .bw = bw,
        .maxRows = maxRowsOf(bw),
        .psm = bits(value, 24, 6),
    };
}

GsTrxPos decodeTrxPos(u64 value) {
    return {
        .ssax = bits(value, 0, 11),
        .ssay = bits(value, 16, 11),
        .dsax = bits(value, 32, 11),
        .dsay = bits(value, 48, 11),
        .dir = bits(value, 59, 2),
    };
}

// Writes with side effects.

/// Sets the attributes that PRIM and PRMODE share in the current record, but not its type. The queue
/// restarts.
void writeAttributes(u64 value) {
    GsPrim& prim = Gs.prim();
    prim.iip = bit(value, 3);
    prim.tme = bit(value, 4);
    prim.fge = bit(value, 5);
    prim.abe = bit(value, 6);
    prim.aa1 = bit(value, 7);
    prim.fst = bit(value, 8);
    prim.ctxt = bit(value, 9);
    prim.fix = bit(value, 10);
    gsSetCtxt(prim.ctxt);
    Gs.primC = 0;
}

void writeBitBltBuf(u64 value) {
    Gs.srcbuf = decodeTransferBuf(value);
    Gs.dstbuf = decodeTransferBuf(value >> 32);
    if (Gs.dstbuf.bw == 0) {
        // A width of 0 uses a fraction of the last one; the row limit stays that of width 0.
        Gs.dstbuf.bw = Gs.ldbw / 32;
    } else {
        Gs.ldbw = Gs.dstbuf.bw;
    }
}

}  // namespace

void gsSetCtxt(u32 context) { Gs.currentContext = context; }

void GSwrite(u64 value, u32 address) {
    using namespace gs_register;
    const u32 low = bits(value, 0, 32);
    const u32 high = bits(value, 32, 32);
    switch (address) {
    case PRIM:
        Gs.prim().type = bits(value, 0, 3);
        if (Gs.prac == 1) {
            writeAttributes(value);
        }
        break;
    case RGBAQ:
        writeRgbaq(low, high);
        break;
    case ST:
        writeSt(low, high);
        break;
    case UV:
        writeUv(low);
        break;
    case XYZF2:
    case XYZF3:
        writeXyzf(low, high, address == XYZF2);
        break;
    case XYZ2:
    case XYZ3:
        writeXyz(low, high, address == XYZ2);
        break;
    case TEX0_1:
    case TEX0_2:
        Gs._tex0[address - TEX0_1] = decodeTex0(value);
        break;
    case CLAMP_1:
    case CLAMP_2:
        Gs._clamp[address - CLAMP_1] = decodeClamp(value);
        break;
    case FOG:
        Gs.fogf = bits(value, 56, 8);
        break;
    case TEX1_1:
    case TEX1_2:
        Gs._tex1[address - TEX1_1] = decodeTex1(value);
        break;
    case TEX2_1:
    case TEX2_2:
        Gs._tex2[address - TEX2_1] = decodeTex2(value);  // stored separately; TEX0 does not change
        break;
    case XYOFFSET_1:
    case XYOFFSET_2:
        Gs._offset[address - XYOFFSET_1] = decodeOffset(value);
        break;
    case PRMODECONT:
        Gs.prac = bit(value, 0);
        Gs.currentPrim = Gs.prac;
        break;
    case PRMODE:
        if (Gs.prac == 0) {
            writeAttributes(value);
        }
        break;
    case TEXCLUT:
        Gs.clut = decodeTexClut(value);
        break;
    case SCANMSK:
        Gs.smask = bits(value, 0, 2);
        break;
    case MIPTBP1_1:
    case MIPTBP1_2:
        Gs._miptbp0[address - MIPTBP1_1] = decodeMipTbp(value);
        break;
    case MIPTBP2_1:
    case MIPTBP2_2:
        Gs._miptbp1[address - MIPTBP2_1] = decodeMipTbp(value);
        break;
    case TEXA:
        Gs.texa = decodeTexa(value);
        break;
    case FOGCOL:
        Gs.fogcol = bits(value, 0, 24);
        break;
    case SCISSOR_1:
    case SCISSOR_2:
        Gs._scissor[address - SCISSOR_1] = decodeScissor(value);
        break;
    case ALPHA_1:
    case ALPHA_2:
        Gs._alpha[address - ALPHA_1] = decodeAlpha(value);
        break;
    case DTHE:
        Gs.dthe = bit(value, 0);
        break;
    case COLCLAMP:
        Gs.colclamp = bit(value, 0);
        break;
    case TEST_1:
    case TEST_2:
        Gs._test[address - TEST_1] = decodeTest(value);
        break;
    case PABE:
        Gs.pabe = bit(value, 0);
        break;
    case FBA_1:
    case FBA_2:
        Gs._fba[address - FBA_1] = bit(value, 0);
        break;
    case FRAME_1:
    case FRAME_2:
        Gs._gsfb[address - FRAME_1] = decodeFrame(value);
        break;
    case ZBUF_1:
    case ZBUF_2:
        Gs._zbuf[address - ZBUF_1] = decodeZbuf(value);
        break;
    case BITBLTBUF:
        writeBitBltBuf(value);
        break;
    case TRXPOS:
        Gs.trxpos = decodeTrxPos(value);
        Gs.imageX = static_cast<s32>(Gs.trxpos.dsax);
        Gs.imageY = static_cast<s32>(Gs.trxpos.dsay);
        break;
    case TRXREG:
        Gs.imageW = low;
        Gs.imageH = high;
        break;
    case TRXDIR:
        Gs.imageTransfer = bits(value, 0, 2);
        if (Gs.imageTransfer == localToLocal) {
            FBmoveImage();
        }
        break;
    default:
        break;
    }
    gsSetCtxt(Gs.prim().ctxt);
}

}  // namespace tarn
