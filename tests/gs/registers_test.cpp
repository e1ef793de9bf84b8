// Tests the register decoding, the privileged registers and the renderer's life cycle.
#include "gs/interface_extras.h"
#include "support/gs_machine.h"
#include "support/machine_test.h"

#include <array>
#include <cstring>

namespace tarn::test {
namespace {

using namespace gs_privileged;
using namespace gs_register;

/// The bits of a register field, kept times `scale`. Without bits: a field that is derived from others.
struct Field {
    u32 first = 0, count = 0, scale = 1;
};
constexpr Field derived{};
const std::vector<Field> mipmapBases{{0, 14}, {20, 14}, {40, 14}, {14, 6}, {34, 6}, {54, 6}};

/// A register, the record it is decoded to, how far that of the other context is, and the fields in order.
struct Layout {
    u32 address;
    const void* record;
    std::size_t distance;
    std::vector<Field> fields;
};

template <typename Record>
Layout both(u32 address, const std::array<Record, 2>& records, const std::vector<Field>& fields) {
    return {address, &records, sizeof(Record), fields};
}
Layout one(u32 address, const auto& record, const std::vector<Field>& fields) {
    return {address, &record, 0, fields};
}

// clang-format off
const Layout layouts[] = {
    both(TEX0_1, Gs._tex0, {{0, 14, 64}, {14, 6, 64}, {20, 6}, derived, derived, {34, 1}, {35, 2},
                            {37, 14, 64}, {51, 4}, {55, 1}}),
    both(CLAMP_1, Gs._clamp, {{1, 1, 2}, {3, 1, 2}, {4, 10}, {14, 10}, {24, 10}, {34, 10}}),
    both(TEX1_1, Gs._tex1, {{0, 1}, {2, 3}, {5, 1}, {6, 3}, {9, 1}, {19, 2}, {36, 8}}),
    both(TEX2_1, Gs._tex2, {{20, 6}, {37, 14}, {51, 4}, {55, 1}, {56, 5}, {61, 3}}),
    both(XYOFFSET_1, Gs._offset, {{4, 12}, {36, 12}}),
    both(MIPTBP1_1, Gs._miptbp0, mipmapBases), both(MIPTBP2_1, Gs._miptbp1, mipmapBases),
    both(SCISSOR_1, Gs._scissor, {{0, 11}, {32, 11}, {16, 11}, {48, 11}}),
    both(ALPHA_1, Gs._alpha, {{0, 2}, {2, 2}, {4, 2}, {6, 2}, {32, 8}}),
    both(TEST_1, Gs._test, {{0, 1}, {1, 3}, {4, 8}, {12, 2}, {14, 1}, {15, 1}, {16, 1}, {17, 2}}),
    both(FBA_1, Gs._fba, {{0, 1}}), both(ZBUF_1, Gs._zbuf, {{0, 9, 2048}, {24, 4}, {32, 1}}),
    both(FRAME_1, Gs._gsfb, {{0, 9, 2048}, {16, 6, 64}, derived, {24, 6}, {32, 32}}),
    one(PRIM, Gs._prim, {{0, 3}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}, {8, 1}, {9, 1}, {10, 1}}),
    one(FOG, Gs.fogf, {{56, 8}}), one(FOGCOL, Gs.fogcol, {{0, 24}}), one(DTHE, Gs.dthe, {{0, 1}}),
    one(TEXCLUT, Gs.clut, {{0, 6}, {6, 6}, {12, 10}}), one(TEXA, Gs.texa, {{0, 8}, {32, 8}, {15, 1}}),
    one(COLCLAMP, Gs.colclamp, {{0, 1}}), one(PABE, Gs.pabe, {{0, 1}}), one(SCANMSK, Gs.smask, {{0, 2}}),
    one(BITBLTBUF, Gs.srcbuf, {{0, 14, 64}, {16, 6, 64}, derived, {24, 6}}),
    one(BITBLTBUF, Gs.dstbuf, {{32, 14, 64}, derived, derived, {56, 6}}),
    one(TRXPOS, Gs.trxpos, {{0, 11}, {16, 11}, {32, 11}, {48, 11}, {59, 2}}),
    one(TRXREG, Gs.imageW, {{0, 32}}), one(TRXREG, Gs.imageH, {{32, 32}}),
};
// clang-format on

class Registers : public GsMachine {};

/// Each field alone all ones, and each alone all zeros; neither changed by the other context's register.
TEST_F(Registers, EveryFieldTakesExactlyItsBits) {
    for (const auto& [address, record, distance, fields] : layouts) {
        for (u32 i = 0; i < 4 * fields.size(); ++i) {
            const auto [first, count, scale] = fields[i / 4];
            const u64 ones = (u64{1} << count) - 1;
            const u64 value = i % 2 != 0 ? ones << first : ~(ones << first);
            const u32 context = distance != 0 ? i / 2 % 2 : 0;
            GSwrite(value, address + context);
            if (distance != 0) {
                GSwrite(~value, address + (context ^ 1));
            }
            u32 word;
            std::memcpy(&word, static_cast<const u8*>(record) + context * distance + i / 4 * 4, 4);
            EXPECT_TRUE(count == 0 || word == static_cast<u32>(value >> first & ones) * scale)
                << "register " << address << ", context " << context + 1 << ", field " << i / 4;
        }
    }
}

TEST_F(Registers, DerivedSizes) {
    for (const u32 field : {0u, 9u, 10u, 12u, 15u}) {
        GSwrite(u64{field} << 26 | u64{15 - field} << 30, TEX0_1);
        EXPECT_EQ(Gs.tex0().tw, field < 10 ? 1u << field : 1024u);
        EXPECT_EQ(Gs.tex0().th, 15 - field < 10 ? 1u << (15 - field) : 1024u);
    }
    for (const auto& [width, rows] : {std::pair{0u, 0x100000u}, {1u, 16384u}, {10u, 1638u}, {63u, 260u}}) {
        GSwrite(u64{width} << 16, FRAME_2);
        GSwrite(u64{width} << 16 | u64{width} << 48, BITBLTBUF);
        GSwrite64(DISPFB2, u64{width} << 9);
        for (const u32 bound :
             {Gs._gsfb[1].maxRows, Gs.srcbuf.maxRows, Gs.dstbuf.maxRows, Gs._gsdspfb[1].maxRows}) {
            EXPECT_EQ(bound, rows);
        }
    }
    // A destination of width 0 makes do with a fraction of the last one; its rows stay those of width 0.
    GSwrite(0, BITBLTBUF);
    EXPECT_EQ(Gs.dstbuf.bw, 63u * 64 / 32);
    EXPECT_EQ(Gs.dstbuf.maxRows, 0x100000u);
}

TEST_F(Registers, PrimitiveAttributesComeFromPrimOrPrmode) {
    Gs.primC = 2;
    GSwrite(0x10, PRMODE);  // AC is 1 at start: ignored
    EXPECT_TRUE(Gs.prim().tme == 0 && Gs.primC == 2);
    GSwrite(0x20B, PRIM);  // triangle, gouraud, context 2
    EXPECT_EQ(&Gs.prim(), &Gs._prim[0]) << "PRMODECONT has not been written";
    EXPECT_TRUE(&Gs.gsfb() == &Gs._gsfb[1] && Gs.primC == 0);
    GSwrite(1, PRMODECONT);  // the other record, all 0: the context follows
    EXPECT_EQ(&Gs.test(), &Gs._test[0]);
    GSwrite(0, PRMODECONT);
    EXPECT_EQ(&Gs.test(), &Gs._test[1]);

    Gs.primC = 1;
    GSwrite(0x7FE, PRIM);  // AC is 0: the type alone
    EXPECT_TRUE(Gs.prim().type == 6 && Gs.prim().abe == 0 && Gs.primC == 1);
    GSwrite(0x141, PRMODE);  // ABE, FST, context 1; not the type
    EXPECT_TRUE(Gs.prim().type == 6 && Gs.prim().iip == 0 && Gs.prim().abe == 1 && Gs.prim().fst == 1);
    EXPECT_TRUE(&Gs.zbuf() == &Gs._zbuf[0] && Gs.primC == 0);
}

TEST_F(Registers, WhatIsNotAssignedStoresNothing) {
    const GsImage before;
    for (const u32 address : {0x0Bu, 0x13u, 0x1Du, 0x21u, 0x23u, 0x33u, 0x38u, 0x44u, 0x54u, 0x62u, 0xFFu}) {
        GSwrite(~u64{0}, address);
    }
    for (const u32 address : {u32{0x120000E0}, u32{CSR}, u32{SMODE2}, u32{DISPLAY1}, u32{DISPLAY2}}) {
        GSwrite32(address, ~0u);  // the last three take 64 bits only
    }
    EXPECT_TRUE(GsImage() == before);
}

TEST_F(Registers, DisplaySizeIsDividedByTheMagnification) {
    const u64 size = u64{639} << 32 | u64{447} << 44;
    const struct {
        u64 value, smode2;
        u32 width, height;
    } cases[] = {
        {size, 0, 640, 448},
        {size | u64{3} << 23, 2, 160, 448},
        {size | u64{3} << 23, 3, 160, 224},  // interlaced frames: half the lines
        {size | u64{1} << 59, 1, 640, 224},
        {size | u64{3} << 27, 0, 640, 448},  // the console's place of MAGV
        {u64{15} << 23, 0, 0, 1},
    };
    for (const u32 circuit : {0u, 1u}) {
        for (const auto& [value, smode2, width, height] : cases) {
            GSwrite64(SMODE2, smode2);
            GSwrite64(circuit == 0 ? DISPLAY1 : DISPLAY2, value);
            EXPECT_EQ(Gs._gsmode[circuit].width, width) << std::hex << value;
            EXPECT_EQ(Gs._gsmode[circuit].height, height) << std::hex << value;
        }
    }
}

TEST_F(Registers, DisplayCircuitIsChosenByPmode) {
    const auto first = [] {
        return std::array{Gs.gsdspfb().fbp, Gs.gsdspfb().psm, Gs.gsdspfb().dbx, Gs.gsdspfb().dby};
    };
    GSwrite64(DISPFB1, 0x3 | 10 << 9 | 2 << 15 | u64{5} << 32 | u64{6} << 43);
    GSwrite64(DISPFB2, 0x4 | 5 << 9);
    EXPECT_EQ(first(), (std::array{3u * 2048, 2u, 5u, 6u}));
    GSwrite64(PMODE, 2);
    EXPECT_TRUE(&Gs.gsdspfb() == &Gs._gsdspfb[1] && &Gs.gsmode() == &Gs._gsmode[1]);
    EXPECT_EQ(Gs.gsdspfb().fbw, 320u);
    GSwrite32(PMODE, 3);
    GSwrite32(DISPFB1, 7);  // there is no upper word
    EXPECT_EQ(first(), (std::array{7u * 2048, 0u, 0u, 0u}));
}

TEST_F(Registers, PrivilegedReads) {
    EXPECT_EQ(GSread64(FIELD), 0x2000u);
    EXPECT_EQ(GSread32(FIELD), 0u) << "32-bit reads do not flip the field";
    EXPECT_EQ(GSread64(FIELD), 0u);
    EXPECT_TRUE(GSread64(CSR) == 8 && GSread32(CSR) == 8 && GSread64(PMODE) == 0);
}

TEST_F(Registers, InitialisationAndItsFailure) {
    EXPECT_TRUE(Gs.gsmode().width == 640 && Gs.gsmode().height == 480);
    EXPECT_TRUE(Gs.gsdspfb().fbw == 640 && Gs.gsdspfb().maxRows == 1638);
    EXPECT_EQ(GSinit(), 0);  // again: nothing leaks
    GSreset();

    const FailingAllocation failing;
    EXPECT_EQ(GSinit(), -1);
    EXPECT_EQ(Gs.gsmode().width, 0u);
    GifStream().write(TRXDIR, 2).write(XYZ2, 0).send();  // dropped, like all that follows
    GSgifTransfer2(GifStream().tag(GifStream::packed, 0, 1, 0, GifStream::endOfPacket).at(0));
    GSvsync();
    EXPECT_FALSE(GSmakeSnapshot("/nonexistent/"));
}

}  // namespace
}  // namespace tarn::test
