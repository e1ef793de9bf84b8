// Tests the register decoding, the privileged registers and the renderer's life cycle.
#include "support/gs_machine.h"
#include "support/machine_test.h"

#include <array>
#include <cstring>

namespace tarn::test {
namespace {

/// The bits of a register field, kept times `scale`. Without bits: a field that is derived from others.
struct Field {
    u32 first = 0;
    u32 count = 0;
    u32 scale = 1;
};

/// A register, how to copy the record it is decoded to, and that record's fields in order.
struct Layout {
    u32 address;
    void (*copy)(u32 context, u32* words);
    std::vector<Field> fields;
};

template <auto Array>
void both(u32 context, u32* words) {
    std::memcpy(words, &(Gs.*Array)[context], sizeof(Gs.*Array) / 2);
}
template <auto Record>
void one(u32, u32* words) {
    std::memcpy(words, &(Gs.*Record), sizeof(Gs.*Record));
}

using S = GsState;
using namespace gs_register;
constexpr Field derived{};
const std::vector<Field> mipmapBases{{0, 14}, {20, 14}, {40, 14}, {14, 6}, {34, 6}, {54, 6}};

// clang-format off
const Layout contextRegisters[] = {
    {TEX0_1, both<&S::_tex0>, {{0, 14, 64}, {14, 6, 64}, {20, 6}, derived, derived, {34, 1}, {35, 2},
                               {37, 14, 64}, {51, 4}, {55, 1}}},
    {CLAMP_1, both<&S::_clamp>, {{1, 1, 2}, {3, 1, 2}, {4, 10}, {14, 10}, {24, 10}, {34, 10}}},
    {TEX1_1, both<&S::_tex1>, {{0, 1}, {2, 3}, {5, 1}, {6, 3}, {9, 1}, {19, 2}, {36, 8}}},
    {TEX2_1, both<&S::_tex2>, {{20, 6}, {37, 14}, {51, 4}, {55, 1}, {56, 5}, {61, 3}}},
    {XYOFFSET_1, both<&S::_offset>, {{4, 12}, {36, 12}}},
    {MIPTBP1_1, both<&S::_miptbp0>, mipmapBases},
    {MIPTBP2_1, both<&S::_miptbp1>, mipmapBases},
    {SCISSOR_1, both<&S::_scissor>, {{0, 11}, {32, 11}, {16, 11}, {48, 11}}},
    {ALPHA_1, both<&S::_alpha>, {{0, 2}, {2, 2}, {4, 2}, {6, 2}, {32, 8}}},
    {TEST_1, both<&S::_test>, {{0, 1}, {1, 3}, {4, 8}, {12, 2}, {14, 1}, {15, 1}, {16, 1}, {17, 2}}},
    {FBA_1, both<&S::_fba>, {{0, 1}}},
    {FRAME_1, both<&S::_gsfb>, {{0, 9, 2048}, {16, 6, 64}, derived, {24, 6}, {32, 32}}},
    {ZBUF_1, both<&S::_zbuf>, {{0, 9, 2048}, {24, 4}, {32, 1}}},
};
const Layout commonRegisters[] = {
    {PRIM, both<&S::_prim>, {{0, 3}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}, {8, 1}, {9, 1}, {10, 1}}},
    {FOG, one<&S::fogf>, {{56, 8}}},
    {TEXCLUT, one<&S::clut>, {{0, 6}, {6, 6}, {12, 10}}},
    {SCANMSK, one<&S::smask>, {{0, 2}}},
    {TEXA, one<&S::texa>, {{0, 8}, {32, 8}, {15, 1}}},
    {FOGCOL, one<&S::fogcol>, {{0, 24}}},
    {DTHE, one<&S::dthe>, {{0, 1}}},
    {COLCLAMP, one<&S::colclamp>, {{0, 1}}},
    {PABE, one<&S::pabe>, {{0, 1}}},
    {BITBLTBUF, one<&S::srcbuf>, {{0, 14, 64}, {16, 6, 64}, derived, {24, 6}}},
    {BITBLTBUF, one<&S::dstbuf>, {{32, 14, 64}, derived, derived, {56, 6}}},
    {TRXPOS, one<&S::trxpos>, {{0, 11}, {16, 11}, {32, 11}, {48, 11}, {59, 2}}},
    {TRXREG, one<&S::imageW>, {{0, 32}}},
    {TRXREG, one<&S::imageH>, {{32, 32}}},
};
// clang-format on

class Registers : public GsMachine {};

/// Each field alone all ones, and each alone all zeros; neither changed by the other context's register.
void expectLayout(const Layout& layout, u32 context, bool hasOther) {
    std::array<u32, 16> words{};
    for (std::size_t i = 0; i < layout.fields.size(); ++i) {
        const auto [first, count, scale] = layout.fields[i];
        const u64 ones = (u64{1} << count) - 1;
        for (const u64 value : {ones << first, ~(ones << first)}) {
            GSwrite(value, layout.address + context);
            if (hasOther) {
                GSwrite(~value, layout.address + (context ^ 1));
            }
            layout.copy(context, words.data());
            EXPECT_TRUE(count == 0 || words[i] == static_cast<u32>(value >> first & ones) * scale)
                << "register " << layout.address << ", context " << context + 1 << ", field " << i;
        }
    }
}

TEST_F(Registers, EveryFieldTakesExactlyItsBits) {
    for (const Layout& layout : contextRegisters) {
        expectLayout(layout, 0, true);
        expectLayout(layout, 1, true);
    }
    for (const Layout& layout : commonRegisters) {
        expectLayout(layout, 0, false);
    }
}

TEST_F(Registers, DerivedSizes) {
    for (const u32 field : {0u, 9u, 10u, 12u, 15u}) {
        GSwrite(u64{field} << 26 | u64{15 - field} << 30, TEX0_1);
        EXPECT_EQ(Gs.tex0->tw, field < 10 ? 1u << field : 1024u);
        EXPECT_EQ(Gs.tex0->th, 15 - field < 10 ? 1u << (15 - field) : 1024u);
    }
    for (const auto& [width, rows] : {std::pair{0u, 0x100000u}, {1u, 16384u}, {10u, 1638u}, {63u, 260u}}) {
        GSwrite(u64{width} << 16, FRAME_2);
        GSwrite(u64{width} << 16 | u64{width} << 48, BITBLTBUF);
        GSwrite64(0x12000090, u64{width} << 9);
        for (const u32 bound :
             {Gs._gsfb[1].maxRows, Gs.srcbuf.maxRows, Gs.dstbuf.maxRows, Gs._gsdspfb[1].maxRows}) {
            EXPECT_EQ(bound, rows);
        }
    }
}

TEST_F(Registers, TransferWidthZeroTakesAFractionOfTheLast) {
    for (const auto& [field, width] :
         {std::pair{0u, 0u}, {10u, 640u}, {0u, 20u}, {0u, 20u}, {1u, 64u}, {0u, 2u}}) {
        GSwrite(u64{field} << 48, BITBLTBUF);
        EXPECT_EQ(Gs.dstbuf.bw, width);
    }
    EXPECT_EQ(Gs.dstbuf.maxRows, 0x100000u);
}

TEST_F(Registers, PrimitiveAttributesComeFromPrimOrPrmode) {
    Gs.primC = 2;
    GSwrite(0x10, PRMODE);  // AC is 1 at start: ignored
    EXPECT_EQ(Gs.prim->tme, 0u);
    EXPECT_EQ(Gs.primC, 2);
    GSwrite(0x20B, PRIM);  // triangle, gouraud, context 2
    EXPECT_EQ(Gs.prim, &Gs._prim[0]) << "PRMODECONT has not been written";
    EXPECT_EQ(Gs.gsfb, &Gs._gsfb[1]);
    EXPECT_EQ(Gs.primC, 0);
    GSwrite(1, PRMODECONT);  // the other record, all 0: the context follows
    EXPECT_EQ(Gs.test, &Gs._test[0]);
    GSwrite(0, PRMODECONT);
    EXPECT_EQ(Gs.test, &Gs._test[1]);

    Gs.primC = 1;
    GSwrite(0x7FE, PRIM);  // AC is 0: the type alone
    EXPECT_EQ(Gs.prim->type, 6u);
    EXPECT_EQ(Gs.prim->abe, 0u);
    EXPECT_EQ(Gs.primC, 1);
    GSwrite(0x141, PRMODE);  // ABE, FST, context 1; not the type
    EXPECT_EQ(Gs.prim->type, 6u);
    EXPECT_EQ(Gs.prim->iip, 0u);
    EXPECT_EQ(Gs.prim->abe, 1u);
    EXPECT_EQ(Gs.prim->fst, 1u);
    EXPECT_EQ(Gs.zbuf, &Gs._zbuf[0]);
    EXPECT_EQ(Gs.primC, 0);
}

TEST_F(Registers, WhatIsNotAssignedStoresNothing) {
    const GsImage before;
    for (const u32 address : {0x0Bu, 0x0Eu, 0x0Fu, 0x13u, 0x1Du, 0x21u, 0x23u, 0x33u, 0x38u, 0x3Au, 0x3Cu,
                              0x3Eu, 0x3Fu, 0x44u, 0x54u, 0x60u, 0x62u, 0xFFu}) {
        GSwrite(~u64{0}, address);
    }
    for (const u32 address : {0x120000E0u, 0x12001000u, 0x12001010u}) {
        GSwrite64(address, ~u64{0});
        GSwrite32(address, ~0u);
    }
    for (const u32 address : {0x12000020u, 0x12000080u, 0x120000A0u}) {
        GSwrite32(address, ~0u);  // these take 64 bits only
    }
    EXPECT_TRUE(GsImage() == before);
}

TEST_F(Registers, DisplaySizeIsDividedByTheMagnification) {
    const u64 size = u64{639} << 32 | u64{447} << 44;
    struct {
        u64 value;
        u64 smode2;
        u32 width;
        u32 height;
    } const cases[] = {
        {size, 0, 640, 448},
        {size | u64{3} << 23, 2, 160, 448},
        {size | u64{3} << 23, 3, 160, 224},  // interlaced frames: half the lines
        {size | u64{1} << 59, 1, 640, 224},
        {size | u64{3} << 27, 0, 640, 448},  // the console's place of MAGV
        {u64{15} << 23, 0, 0, 1},
    };
    for (const u32 circuit : {0u, 1u}) {
        for (const auto& c : cases) {
            GSwrite64(0x12000020, c.smode2);
            GSwrite64(0x12000080 + circuit * 0x20, c.value);
            EXPECT_EQ(Gs._gsmode[circuit].width, c.width) << std::hex << c.value;
            EXPECT_EQ(Gs._gsmode[circuit].height, c.height) << std::hex << c.value;
        }
    }
}

TEST_F(Registers, DisplayCircuitIsChosenByPmode) {
    GSwrite64(0x12000070, 0x3 | 10 << 9 | 2 << 15 | u64{5} << 32 | u64{6} << 43);
    GSwrite64(0x12000090, 0x4 | 5 << 9);
    EXPECT_EQ(Gs.gsdspfb->fbp, 3u * 2048);
    EXPECT_EQ(Gs.gsdspfb->psm, 2u);
    EXPECT_EQ(Gs.gsdspfb->dbx, 5u);
    EXPECT_EQ(Gs.gsdspfb->dby, 6u);
    GSwrite64(0x12000000, 2);
    EXPECT_EQ(Gs.gsdspfb, &Gs._gsdspfb[1]);
    EXPECT_EQ(Gs.gsmode, &Gs._gsmode[1]);
    EXPECT_EQ(Gs.gsdspfb->fbw, 320u);
    GSwrite32(0x12000000, 3);
    GSwrite32(0x12000070, 7);
    EXPECT_EQ(Gs.gsdspfb->fbp, 7u * 2048);
    EXPECT_EQ(Gs.gsdspfb->dbx, 0u) << "there is no upper word";
}

TEST_F(Registers, PrivilegedReads) {
    EXPECT_EQ(GSread64(0x12000400), 0x2000u);
    EXPECT_EQ(GSread32(0x12000400), 0u) << "32-bit reads do not flip the field";
    EXPECT_EQ(GSread64(0x12000400), 0u);
    EXPECT_EQ(GSread64(0x12001000), 8u);
    EXPECT_EQ(GSread32(0x12001000), 8u);
    EXPECT_EQ(GSread64(0x12000000), 0u);
}

TEST_F(Registers, InitialisationAndItsFailure) {
    EXPECT_EQ(Gs.gsmode->width, 640u);
    EXPECT_EQ(Gs.gsmode->height, 480u);
    EXPECT_EQ(Gs.gsdspfb->fbw, 640u);
    EXPECT_EQ(Gs.gsdspfb->maxRows, 1638u);
    EXPECT_EQ(GSinit(), 0);  // again: nothing leaks
    GSreset();

    const FailingAllocation failing;
    EXPECT_EQ(GSinit(), -1);
    EXPECT_EQ(Gs.gsmode->width, 0u);
    GifStream().write(TRXDIR, 2).write(XYZ2, 0).send();  // dropped, like all that follows
    GSgifTransfer2(GifStream().tag(GifStream::packed, 0, 1, 0, GifStream::endOfPacket).at(0));
    GSvsync();
    EXPECT_FALSE(GSmakeSnapshot("/nonexistent/"));
}

}  // namespace
}  // namespace tarn::test
