// The state of the Graphics Synthesizer: local memory, decoded registers, transfer, GIF and display.
#pragma once

#include "base/buffer.h"
#include "base/types.h"

#include <array>

namespace tarn {

inline constexpr u32 localMemoryBytes = 0x400000;  ///< 4 MB
inline constexpr u32 localMemoryWords = 0x100000;  ///< one 32-bit word a pixel, whatever the format

// Register records. Bases are in words (FBP and ZBP × 2048, TBP0, CBP, SBP and DBP × 64), widths in pixels.

/// FRAME_1/2.
struct GsFrame {
    u32 fbp = 0;
    u32 fbw = 0;
    u32 maxRows = 0;  ///< rows of this width that local memory holds
    u32 psm = 0;
    u32 fbmsk = 0;
};

/// ZBUF_1/2.
struct GsZbuf {
    u32 zbp = 0;
    u32 psm = 0;
    u32 zmsk = 0;
};

/// TEX0_1/2; tw and th are sizes in texels.
struct GsTex0 {
    u32 tbp0 = 0;
    u32 tbw = 0;
    u32 psm = 0;
    u32 tw = 0;
    u32 th = 0;
    u32 tcc = 0;
    u32 tfx = 0;
    u32 cbp = 0;
    u32 cpsm = 0;
    u32 csm = 0;
};

/// TEX1_1/2.
struct GsTex1 {
    u32 lcm = 0;
    u32 mxl = 0;
    u32 mmag = 0;
    u32 mmin = 0;
    u32 mtba = 0;
    u32 l = 0;
    u32 k = 0;
};

/// TEX2_1/2; cbp is not scaled.
struct GsTex2 {
    u32 psm = 0;
    u32 cbp = 0;
    u32 cpsm = 0;
    u32 csm = 0;
    u32 csa = 0;
    u32 cld = 0;
};

/// CLAMP_1/2; wms and wmt are 0 or 2.
struct GsClamp {
    u32 wms = 0;
    u32 wmt = 0;
    u32 minu = 0;
    u32 maxu = 0;
    u32 minv = 0;
    u32 maxv = 0;
};

/// MIPTBP1_1/2 and MIPTBP2_1/2, not scaled.
struct GsMipTbp {
    u32 tbp1 = 0;
    u32 tbp2 = 0;
    u32 tbp3 = 0;
    u32 tbw1 = 0;
    u32 tbw2 = 0;
    u32 tbw3 = 0;
};

/// XYOFFSET_1/2, integer parts.
struct GsOffset {
    u32 ofx = 0;
    u32 ofy = 0;
};

/// SCISSOR_1/2.
struct GsScissor {
    u32 scax0 = 0;
    u32 scay0 = 0;
    u32 scax1 = 0;
    u32 scay1 = 0;
};

/// ALPHA_1/2.
struct GsAlpha {
    u32 a = 0;
    u32 b = 0;
    u32 c = 0;
    u32 d = 0;
    u32 fix = 0;
};

/// TEST_1/2.
struct GsTest {
    u32 ate = 0;
    u32 atst = 0;
    u32 aref = 0;
    u32 afail = 0;
    u32 date = 0;
    u32 datm = 0;
    u32 zte = 0;
    u32 ztst = 0;
};

/// The primitive type (PRIM) with its attributes (PRIM or PRMODE).
struct GsPrim {
    u32 type = 0;
    u32 iip = 0;
    u32 tme = 0;
    u32 fge = 0;
    u32 abe = 0;
    u32 aa1 = 0;
    u32 fst = 0;
    u32 ctxt = 0;
    u32 fix = 0;
};

/// TEXA.
struct GsTexa {
    u32 ta0 = 0;
    u32 ta1 = 0;
    u32 aem = 0;
};

/// TEXCLUT, in register units.
struct GsTexClut {
    u32 cbw = 0;
    u32 cou = 0;
    u32 cov = 0;
};

/// One vertex of the queue, or the pending one that RGBAQ, ST and UV fill.
struct GsVertex {
    s32 x = 0;  ///< pixels, primitive coordinates, the 12.4 fraction dropped
    s32 y = 0;
    u32 f = 0;  ///< fog coefficient, stored and unused
    u32 z = 0;
    s32 u = 0;  ///< texels
    s32 v = 0;
    f32 s = 0;
    f32 t = 0;
    f32 q = 0;
    u32 rgba = 0;  ///< R in bits 0-7, G 8-15, B 16-23, A 24-31
};

/// One side of a transfer, from BITBLTBUF.
struct GsTransferBuf {
    u32 bp = 0;
    u32 bw = 0;
    u32 maxRows = 0;
    u32 psm = 0;
};

/// TRXPOS.
struct GsTrxPos {
    u32 ssax = 0;
    u32 ssay = 0;
    u32 dsax = 0;
    u32 dsay = 0;
    u32 dir = 0;
};

/// A GIF tag; nloop counts down while its data are consumed.
struct GifTag {
    u32 nloop = 0;
    u32 eop = 0;
    u32 flg = 0;
    u32 nreg = 0;
    u32 prim = 0;
    u32 pre = 0;
};

/// What the next quadword of a GIF stream is.
enum class GifMode : u32 {
    Tag = 0,
    Packed = 1,
    Reglist = 2,
    Image = 3,
};

/// SMODE2.
struct GsSmode2 {
    u32 int_ = 0;  ///< INT, interlaced
    u32 ffmd = 0;
    u32 dpms = 0;
};

/// DISPFB1/2.
struct GsDispFb {
    u32 fbp = 0;
    u32 fbw = 0;
    u32 maxRows = 0;
    u32 psm = 0;
    u32 dbx = 0;
    u32 dby = 0;
};

/// DISPLAY1/2; x and y are never written.
struct GsDisplay {
    u32 x = 0;
    u32 y = 0;
    u32 width = 0;
    u32 height = 0;
};

/// The state of the renderer. Arrays with an element per context have a leading underscore (index 0 is
/// context 1); the function of the bare name returns the current context's record.
struct GsState {
    // Local memory, as bytes and as words. All indexes are taken modulo its size. The cast is sound: nothing
    // but words and bytes is ever stored there.
    Buffer vRam;
    u32* vRamUL() const { return reinterpret_cast<u32*>(vRam.begin()); }

    // Drawing contexts.
    std::array<GsFrame, 2> _gsfb{};
    std::array<GsZbuf, 2> _zbuf{};
    std::array<GsTex0, 2> _tex0{};
    std::array<GsTex1, 2> _tex1{};
    std::array<GsTex2, 2> _tex2{};
    std::array<GsClamp, 2> _clamp{};
    std::array<GsMipTbp, 2> _miptbp0{};
    std::array<GsMipTbp, 2> _miptbp1{};
    std::array<GsOffset, 2> _offset{};
    std::array<GsScissor, 2> _scissor{};
    std::array<GsAlpha, 2> _alpha{};
    std::array<GsTest, 2> _test{};
    std::array<u32, 2> _fba{};

    u32 currentContext = 0;  ///< 0 or 1, set by gsSetCtxt

    GsFrame& gsfb() { return _gsfb[currentContext]; }
    GsZbuf& zbuf() { return _zbuf[currentContext]; }
    GsTex0& tex0() { return _tex0[currentContext]; }
    GsTex1& tex1() { return _tex1[currentContext]; }
    GsTex2& tex2() { return _tex2[currentContext]; }
    GsClamp& clamp() { return _clamp[currentContext]; }
    GsMipTbp& miptbp0() { return _miptbp0[currentContext]; }
    GsMipTbp& miptbp1() { return _miptbp1[currentContext]; }
    GsOffset& xyoffset() { return _offset[currentContext]; }
    GsScissor& scissor() { return _scissor[currentContext]; }
    GsAlpha& alpha() { return _alpha[currentContext]; }
    GsTest& test() { return _test[currentContext]; }
    u32& fba() { return _fba[currentContext]; }

    // Drawing state without a context.
    std::array<GsPrim, 2> _prim{};
    u32 currentPrim = 0;  ///< the _prim record selected by the last write to prac
    GsPrim& prim() { return _prim[currentPrim]; }
    u32 prac = 1;                        ///< PRMODECONT
    std::array<GsVertex, 3> gsvertex{};  ///< the queue
    s32 primC = 0;                       ///< vertices in the queue
    u32 rgba = 0;                        ///< last RGBAQ colour
    GsTexa texa{};
    GsTexClut clut{};
    u32 fogcol = 0;
    u32 fogf = 0;
    u32 smask = 0;
    u32 dthe = 0;
    u32 colclamp = 0;
    u32 pabe = 0;

    // Transfers.
    GsTransferBuf srcbuf{};
    GsTransferBuf dstbuf{};
    u32 ldbw = 0;  ///< last destination width that was not 0, pixels
    GsTrxPos trxpos{};
    u32 imageW = 0;  ///< pixels
    u32 imageH = 0;
    s32 imageX = 0;  ///< the transfer cursor
    s32 imageY = 0;
    u32 imagePtr = 0;       ///< word index of the destination buffer, taken by the IMAGE tag
    u32 imageTransfer = 0;  ///< TRXDIR

    /// Words of local memory that primitives and local moves have covered so far. Not visible to the guest.
    u64 work = 0;

    // GIF.
    GifTag gtag{};
    u64 regs = 0;  ///< descriptors, four bits each
    u32 regn = 0;  ///< next descriptor
    GifMode gifMode = GifMode::Tag;

    // Display.
    u32 pmode = 0;  ///< the circuit shown, 0 or 1
    GsSmode2 smode2{};
    std::array<GsDispFb, 2> _gsdspfb{};
    std::array<GsDisplay, 2> _gsmode{};
    u32 currentCircuit = 0;  ///< pmode as of the last write to a privileged register
    GsDispFb& gsdspfb() { return _gsdspfb[currentCircuit]; }
    GsDisplay& gsmode() { return _gsmode[currentCircuit]; }
    u32 magh = 0;
    u32 magv = 0;
    u32 interlace = 0;  ///< flipped by each read of FIELD
};

}  // namespace tarn
