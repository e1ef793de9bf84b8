// The GS's registers by name.
#include "recording/register_fields.h"

#include "base/bits.h"
#include "base/device_codes.h"
#include "gs/registers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

namespace tarn::recording {
namespace {

using Field = RegisterField;

constexpr Field prim[] = {{"PRIM", 0, 3}, {"IIP", 3, 1}, {"TME", 4, 1},  {"FGE", 5, 1}, {"ABE", 6, 1},
                          {"AA1", 7, 1},  {"FST", 8, 1}, {"CTXT", 9, 1}, {"FIX", 10, 1}};
constexpr Field rgbaq[] = {{"R", 0, 8}, {"G", 8, 8}, {"B", 16, 8}, {"A", 24, 8}, {"Q", 32, 32}};
constexpr Field st[] = {{"S", 0, 32}, {"T", 32, 32}};
constexpr Field uv[] = {{"U", 0, 14}, {"V", 16, 14}};
constexpr Field xyzf[] = {{"X", 0, 16}, {"Y", 16, 16}, {"Z", 32, 24}, {"F", 56, 8}};
constexpr Field xyz[] = {{"X", 0, 16}, {"Y", 16, 16}, {"Z", 32, 32}};
constexpr Field tex0[] = {{"TBP0", 0, 14}, {"TBW", 14, 6}, {"PSM", 20, 6},        {"TW", 26, 4},
                          {"TH", 30, 4},   {"TCC", 34, 1}, {"TFX", 35, 2},        {"CBP", 37, 14},
                          {"CPSM", 51, 4}, {"CSM", 55, 1}, {"CSA", 56, 5, false}, {"CLD", 61, 3, false}};
constexpr Field clamp[] = {{"WMS", 0, 2},    {"WMT", 2, 2},    {"MINU", 4, 10},
                           {"MAXU", 14, 10}, {"MINV", 24, 10}, {"MAXV", 34, 10}};
constexpr Field fog[] = {{"F", 56, 8}};
constexpr Field tex1[] = {{"LCM", 0, 1},  {"MXL", 2, 3}, {"MMAG", 5, 1},      {"MMIN", 6, 3},
                          {"MTBA", 9, 1}, {"L", 19, 2},  {"K", 32, 12, false}};
constexpr Field tex2[] = {{"PSM", 20, 6}, {"CBP", 37, 14}, {"CPSM", 51, 4},
                          {"CSM", 55, 1}, {"CSA", 56, 5},  {"CLD", 61, 3}};
constexpr Field xyoffset[] = {{"OFX", 0, 16}, {"OFY", 32, 16}};
constexpr Field prmodecont[] = {{"AC", 0, 1}};
constexpr Field prmode[] = {{"IIP", 3, 1}, {"TME", 4, 1}, {"FGE", 5, 1},  {"ABE", 6, 1},
                            {"AA1", 7, 1}, {"FST", 8, 1}, {"CTXT", 9, 1}, {"FIX", 10, 1}};
constexpr Field texclut[] = {{"CBW", 0, 6}, {"COU", 6, 6}, {"COV", 12, 10}};
constexpr Field scanmsk[] = {{"MSK", 0, 2}};
constexpr Field miptbp1[] = {{"TBP1", 0, 14}, {"TBW1", 14, 6},  {"TBP2", 20, 14},
                             {"TBW2", 34, 6}, {"TBP3", 40, 14}, {"TBW3", 54, 6}};
constexpr Field miptbp2[] = {{"TBP4", 0, 14}, {"TBW4", 14, 6},  {"TBP5", 20, 14},
                             {"TBW5", 34, 6}, {"TBP6", 40, 14}, {"TBW6", 54, 6}};
constexpr Field texa[] = {{"TA0", 0, 8}, {"AEM", 15, 1}, {"TA1", 32, 8}};
constexpr Field fogcol[] = {{"FCR", 0, 8}, {"FCG", 8, 8}, {"FCB", 16, 8}};
constexpr Field scissor[] = {{"SCAX0", 0, 11}, {"SCAX1", 16, 11}, {"SCAY0", 32, 11}, {"SCAY1", 48, 11}};
constexpr Field alpha[] = {{"A", 0, 2}, {"B", 2, 2}, {"C", 4, 2}, {"D", 6, 2}, {"FIX", 32, 8}};
constexpr Field dthe[] = {{"DTHE", 0, 1}};
constexpr Field colclamp[] = {{"CLAMP", 0, 1}};
constexpr Field test[] = {{"ATE", 0, 1},   {"ATST", 1, 3},  {"AREF", 4, 8}, {"AFAIL", 12, 2},
                          {"DATE", 14, 1}, {"DATM", 15, 1}, {"ZTE", 16, 1}, {"ZTST", 17, 2}};
constexpr Field pabe[] = {{"PABE", 0, 1}};
constexpr Field fba[] = {{"FBA", 0, 1}};
constexpr Field frame[] = {{"FBP", 0, 9}, {"FBW", 16, 6}, {"PSM", 24, 6}, {"FBMSK", 32, 32}};
constexpr Field zbuf[] = {{"ZBP", 0, 9}, {"PSM", 24, 4}, {"ZMSK", 32, 1}};
constexpr Field bitbltbuf[] = {{"SBP", 0, 14},  {"SBW", 16, 6}, {"SPSM", 24, 6},
                               {"DBP", 32, 14}, {"DBW", 48, 6}, {"DPSM", 56, 6}};
constexpr Field trxpos[] = {
    {"SSAX", 0, 11}, {"SSAY", 16, 11}, {"DSAX", 32, 11}, {"DSAY", 48, 11}, {"DIR", 59, 2}};
constexpr Field trxreg[] = {{"RRW", 0, 12}, {"RRH", 32, 12}};
constexpr Field trxdir[] = {{"XDIR", 0, 2}};
constexpr Field pmode[] = {{"EN1", 0, 1},  {"EN2", 1, 1},  {"CRTMD", 2, 3}, {"MMOD", 5, 1},
                           {"AMOD", 6, 1}, {"SLBG", 7, 1}, {"ALP", 8, 8}};
constexpr Field smode2[] = {{"INT", 0, 1}, {"FFMD", 1, 1}, {"DPMS", 2, 2}};
constexpr Field dispfb[] = {{"FBP", 0, 9}, {"FBW", 9, 6}, {"PSM", 15, 5}, {"DBX", 32, 11}, {"DBY", 43, 11}};
constexpr Field display[] = {{"DX", 0, 12},   {"DY", 12, 11}, {"MAGH", 23, 4},
                             {"MAGV", 27, 2}, {"DW", 32, 12}, {"DH", 44, 11}};

constexpr RegisterLayout layouts[] = {
    {gs_register::PRIM, "PRIM", false, prim},
    {gs_register::RGBAQ, "RGBAQ", false, rgbaq},
    {gs_register::ST, "ST", false, st},
    {gs_register::UV, "UV", false, uv},
    {gs_register::XYZF2, "XYZF2", false, xyzf},
    {gs_register::XYZ2, "XYZ2", false, xyz},
    {gs_register::TEX0_1, "TEX0", true, tex0},
    {gs_register::CLAMP_1, "CLAMP", true, clamp},
    {gs_register::FOG, "FOG", false, fog},
    {gs_register::XYZF3, "XYZF3", false, xyzf},
    {gs_register::XYZ3, "XYZ3", false, xyz},
    {gs_register::TEX1_1, "TEX1", true, tex1},
    {gs_register::TEX2_1, "TEX2", true, tex2},
    {gs_register::XYOFFSET_1, "XYOFFSET", true, xyoffset},
    {gs_register::PRMODECONT, "PRMODECONT", false, prmodecont},
    {gs_register::PRMODE, "PRMODE", false, prmode},
    {gs_register::TEXCLUT, "TEXCLUT", false, texclut},
    {gs_register::SCANMSK, "SCANMSK", false, scanmsk},
    {gs_register::MIPTBP1_1, "MIPTBP1", true, miptbp1},
    {gs_register::MIPTBP2_1, "MIPTBP2", true, miptbp2},
    {gs_register::TEXA, "TEXA", false, texa},
    {gs_register::FOGCOL, "FOGCOL", false, fogcol},
    {gs_register::SCISSOR_1, "SCISSOR", true, scissor},
    {gs_register::ALPHA_1, "ALPHA", true, alpha},
    {gs_register::DTHE, "DTHE", false, dthe},
    {gs_register::COLCLAMP, "COLCLAMP", false, colclamp},
    {gs_register::TEST_1, "TEST", true, test},
    {gs_register::PABE, "PABE", false, pabe},
    {gs_register::FBA_1, "FBA", true, fba},
    {gs_register::FRAME_1, "FRAME", true, frame},
    {gs_register::ZBUF_1, "ZBUF", true, zbuf},
    {gs_register::BITBLTBUF, "BITBLTBUF", false, bitbltbuf},
    {gs_register::TRXPOS, "TRXPOS", false, trxpos},
    {gs_register::TRXREG, "TRXREG", false, trxreg},
    {gs_register::TRXDIR, "TRXDIR", false, trxdir},
    {gs_privileged::PMODE, "PMODE", false, pmode},
    {gs_privileged::SMODE2, "SMODE2", false, smode2},
    {gs_privileged::DISPFB1, "DISPFB1", false, dispfb},
    {gs_privileged::DISPLAY1, "DISPLAY1", false, display},
    {gs_privileged::DISPFB2, "DISPFB2", false, dispfb},
    {gs_privileged::DISPLAY2, "DISPLAY2", false, display},
};

/// The value of a field that starts at bit `first`.
constexpr u64 at(unsigned first, u64 value) { return value << first; }

/// The exponent of a texture's size; 0 until TEX0 is written.
constexpr u64 exponent(u32 size) { return size == 0 ? 0 : static_cast<u64>(std::countr_zero(size)); }

u64 attributes(const GsPrim& p) {
    return at(3, p.iip) | at(4, p.tme) | at(5, p.fge) | at(6, p.abe) | at(7, p.aa1) | at(8, p.fst) |
           at(9, p.ctxt) | at(10, p.fix);
}

u64 heldMipTbp(const GsMipTbp& m) {
    return at(0, m.tbp1) | at(14, m.tbw1) | at(20, m.tbp2) | at(34, m.tbw2) | at(40, m.tbp3) | at(54, m.tbw3);
}

}  // namespace

const RegisterLayout* layoutOf(u32 address) {
    const auto* const found = std::ranges::find_if(layouts, [address](const RegisterLayout& layout) {
        return layout.address == address || (layout.perContext && layout.address + 1 == address);
    });
    return found == std::end(layouts) ? nullptr : found;
}

bool isPrivilegedRegister(u32 address) { return address > 0xFF && layoutOf(address) != nullptr; }

std::string registerName(u32 address) {
    const RegisterLayout* const layout = layoutOf(address);
    if (layout == nullptr) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%02x", address);
        return text;
    }
    const char* const suffix = !layout->perContext ? "" : layout->address == address ? "_1" : "_2";
    return std::string(layout->name) + suffix;
}

std::string fieldsOf(const RegisterLayout& layout, u64 value, bool keptOnly) {
    std::string text;
    for (const RegisterField& field : layout.fields) {
        if (!keptOnly || field.kept) {
            text += (text.empty() ? "" : " ") + std::string(field.name) + "=" +
                    std::to_string(bits(value, field.first, field.count));
        }
    }
    return text;
}

u64 heldValue(const GsState& state, u32 address) {
    using namespace gs_register;
    const RegisterLayout* const layout = layoutOf(address);
    const u32 c = layout != nullptr && layout->perContext && layout->address != address ? 1 : 0;
    switch (layout != nullptr ? layout->address : address) {
    case PRIM:
        return state._prim[state.currentPrim].type | attributes(state._prim[state.currentPrim]);
    case PRMODE:
        return attributes(state._prim[state.currentPrim]);
    case PRMODECONT:
        return state.prac;
    case RGBAQ:
        return state.rgba;
    case TEX0_1: {
        const GsTex0& t = state._tex0[c];
        return at(0, t.tbp0 / 64) | at(14, t.tbw / 64) | at(20, t.psm) | at(26, exponent(t.tw)) |
               at(30, exponent(t.th)) | at(34, t.tcc) | at(35, t.tfx) | at(37, t.cbp / 64) | at(51, t.cpsm) |
               at(55, t.csm);
    }
    case CLAMP_1: {
        const GsClamp& l = state._clamp[c];
        return at(0, l.wms) | at(2, l.wmt) | at(4, l.minu) | at(14, l.maxu) | at(24, l.minv) | at(34, l.maxv);
    }
    case FOG:
        return at(56, state.fogf);
    case TEX1_1: {
        const GsTex1& t = state._tex1[c];
        return at(0, t.lcm) | at(2, t.mxl) | at(5, t.mmag) | at(6, t.mmin) | at(9, t.mtba) | at(19, t.l);
    }
    case TEX2_1: {
        const GsTex2& t = state._tex2[c];
        return at(20, t.psm) | at(37, t.cbp) | at(51, t.cpsm) | at(55, t.csm) | at(56, t.csa) | at(61, t.cld);
    }
    case XYOFFSET_1:
        return at(4, state._offset[c].ofx) | at(36, state._offset[c].ofy);
    case TEXCLUT:
        return at(0, state.clut.cbw) | at(6, state.clut.cou) | at(12, state.clut.cov);
    case SCANMSK:
        return state.smask;
    case MIPTBP1_1:
        return heldMipTbp(state._miptbp0[c]);
    case MIPTBP2_1:
        return heldMipTbp(state._miptbp1[c]);
    case TEXA:
        return at(0, state.texa.ta0) | at(15, state.texa.aem) | at(32, state.texa.ta1);
    case FOGCOL:
        return state.fogcol;
    case SCISSOR_1: {
        const GsScissor& s = state._scissor[c];
        return at(0, s.scax0) | at(16, s.scax1) | at(32, s.scay0) | at(48, s.scay1);
    }
    case ALPHA_1: {
        const GsAlpha& a = state._alpha[c];
        return at(0, a.a) | at(2, a.b) | at(4, a.c) | at(6, a.d) | at(32, a.fix);
    }
    case DTHE:
        return state.dthe;
    case COLCLAMP:
        return state.colclamp;
    case TEST_1: {
        const GsTest& t = state._test[c];
        return at(0, t.ate) | at(1, t.atst) | at(4, t.aref) | at(12, t.afail) | at(14, t.date) |
               at(15, t.datm) | at(16, t.zte) | at(17, t.ztst);
    }
    case PABE:
        return state.pabe;
    case FBA_1:
        return state._fba[c];
    case FRAME_1: {
        const GsFrame& f = state._gsfb[c];
        return at(0, f.fbp / 2048) | at(16, f.fbw / 64) | at(24, f.psm) | at(32, f.fbmsk);
    }
    case ZBUF_1: {
        const GsZbuf& z = state._zbuf[c];
        return at(0, z.zbp / 2048) | at(24, z.psm) | at(32, z.zmsk);
    }
    case BITBLTBUF: {
        const GsTransferBuf& from = state.srcbuf;
        const GsTransferBuf& to = state.dstbuf;
        return at(0, from.bp / 64) | at(16, from.bw / 64) | at(24, from.psm) | at(32, to.bp / 64) |
               at(48, to.bw / 64) | at(56, to.psm);
    }
    case TRXPOS: {
        const GsTrxPos& t = state.trxpos;
        return at(0, t.ssax) | at(16, t.ssay) | at(32, t.dsax) | at(48, t.dsay) | at(59, t.dir);
    }
    case TRXREG:
        return state.imageW | at(32, state.imageH);
    case TRXDIR:
        return state.imageTransfer;
    default:
        return 0;
    }
}

}  // namespace tarn::recording
