// Tests the register decoding, the privileged registers and the renderer's life cycle.
#include "base/allocation.h"
#include "gs/gs_log.h"
#include "support/gs_machine.h"

#include <array>
#include <utility>

namespace tarn {
namespace {

/// The bits of a register field, kept times `scale`. Without bits: a field that is derived from others.
struct Field {
    u32 first = 0;
    u32 count = 0;
    u32 scale = 1;
};

/// A register, how to copy the record it is decoded to, and that record's fields in order.
struct Layout {
    const char* name;
    u32 address;
    void (*copy)(u32 context, u32* words);
    std::vector<Field> fields;
};

template <auto Array>
void perContext(u32 context, u32* words) {
    std::memcpy(words, &(Gs.*Array)[context], sizeof(Gs.*Array) / 2);
}
template <auto Record>
void common(u32, u32* words) {
    std::memcpy(words, &(Gs.*Record), sizeof(Gs.*Record));
}

using S = GsState;
constexpr Field derived{};
const std::vector<Field> mipmapBases{{0, 14}, {20, 14}, {40, 14}, {14, 6}, {34, 6}, {54, 6}};

const Layout contextRegisters[] = {
    {"TEX0",
     0x06,
     perContext<&S::_tex0>,
     {{0, 14, 64}, {14, 6, 64}, {20, 6}, derived, derived, {34, 1}, {35, 2}, {37, 14, 64}, {51, 4}, {55, 1}}},
    {"CLAMP", 0x08, perContext<&S::_clamp>, {{1, 1, 2}, {3, 1, 2}, {4, 10}, {14, 10}, {24, 10}, {34, 10}}},
    {"TEX1", 0x14, perContext<&S::_tex1>, {{0, 1}, {2, 3}, {5, 1}, {6, 3}, {9, 1}, {19, 2}, {36, 8}}},
    {"TEX2", 0x16, perContext<&S::_tex2>, {{20, 6}, {37, 14}, {51, 4}, {55, 1}, {56, 5}, {61, 3}}},
    {"XYOFFSET", 0x18, perContext<&S::_offset>, {{4, 12}, {36, 12}}},
    {"MIPTBP1", 0x34, perContext<&S::_miptbp0>, mipmapBases},
    {"MIPTBP2", 0x36, perContext<&S::_miptbp1>, mipmapBases},
    {"SCISSOR", 0x40, perContext<&S::_scissor>, {{0, 11}, {32, 11}, {16, 11}, {48, 11}}},
    {"ALPHA", 0x42, perContext<&S::_alpha>, {{0, 2}, {2, 2}, {4, 2}, {6, 2}, {32, 8}}},
    {"TEST",
     0x47,
     perContext<&S::_test>,
     {{0, 1}, {1, 3}, {4, 8}, {12, 2}, {14, 1}, {15, 1}, {16, 1}, {17, 2}}},
    {"FBA", 0x4A, perContext<&S::_fba>, {{0, 1}}},
    {"FRAME", 0x4C, perContext<&S::_gsfb>, {{0, 9, 2048}, {16, 6, 64}, derived, {24, 6}, {32, 32}}},
    {"ZBUF", 0x4E, perContext<&S::_zbuf>, {{0, 9, 2048}, {24, 4}, {32, 1}}},
};

const Layout commonRegisters[] = {
    {"PRIM",
     0x00,
     perContext<&S::_prim>,
     {{0, 3}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}, {8, 1}, {9, 1}, {10, 1}}},
    {"FOG", 0x0A, common<&S::fogf>, {{56, 8}}},
    {"TEXCLUT", 0x1C, common<&S::clut>, {{0, 6}, {6, 6}, {12, 10}}},
    {"SCANMSK", 0x22, common<&S::smask>, {{0, 2}}},
    {"TEXA", 0x3B, common<&S::texa>, {{0, 8}, {32, 8}, {15, 1}}},
    {"FOGCOL", 0x3D, common<&S::fogcol>, {{0, 24}}},
    {"DTHE", 0x45, common<&S::dthe>, {{0, 1}}},
    {"COLCLAMP", 0x46, common<&S::colclamp>, {{0, 1}}},
    {"PABE", 0x49, common<&S::pabe>, {{0, 1}}},
    {"BITBLTBUF source", 0x50, common<&S::srcbuf>, {{0, 14, 64}, {16, 6, 64}, derived, {24, 6}}},
    {"BITBLTBUF destination", 0x50, common<&S::dstbuf>, {{32, 14, 64}, derived, derived, {56, 6}}},
    {"TRXPOS", 0x51, common<&S::trxpos>, {{0, 11}, {16, 11}, {32, 11}, {48, 11}, {59, 2}}},
    {"TRXREG low", 0x52, common<&S::imageW>, {{0, 32}}},
    {"TRXREG high", 0x52, common<&S::imageH>, {{32, 32}}},
};

class Registers : public GsMachine {};

/// Each field alone all ones, and each alone all zeros, in a register of the given context.
void expectLayout(const Layout& layout, u32 context) {
    std::array<u32, 16> words{};
    for (std::size_t i = 0; i < layout.fields.size(); ++i) {
        const Field& field = layout.fields[i];
        if (field.count == 0) {
            continue;
        }
        SCOPED_TRACE(testing::Message() << layout.name << ", context " << context + 1 << ", field " << i);
        const u64 ones = (u64{1} << field.count) - 1;
        GSwrite(ones << field.first, layout.address + context);
        layout.copy(context, words.data());
        EXPECT_EQ(words[i], static_cast<u32>(ones) * field.scale);
        GSwrite(~(ones << field.first), layout.address + context);
        layout.copy(context, words.data());
        EXPECT_EQ(words[i], 0u);
    }
}

TEST_F(Registers, EveryFieldTakesExactlyItsBits) {
    for (const Layout& layout : contextRegisters) {
        for (const u32 context : {0u, 1u}) {
            expectLayout(layout, context);
            std::array<u32, 16> words{};
            layout.copy(context, words.data());
            GSwrite(0, layout.address + (context ^ 1));
            std::array<u32, 16> after{};
            layout.copy(context, after.data());
            EXPECT_EQ(words, after) << layout.name << ": changed by the other context's write";
        }
    }
    for (const Layout& layout : commonRegisters) {
        expectLayout(layout, 0);
    }
}

TEST_F(Registers, SizesAndRowBounds) {
    for (const auto& [field, size] :
         {std::pair{0u, 1u}, {9u, 512u}, {10u, 1024u}, {12u, 1024u}, {15u, 1024u}}) {
        GSwrite(u64{field} << 26 | u64{15 - field} << 30, gs_register::TEX0_1);
        EXPECT_EQ(Gs.tex0->tw, size);
        EXPECT_EQ(Gs.tex0->th, 1u << std::min(15 - field, 10u));
    }
    for (const auto& [width, rows] : {std::pair{0u, 0x100000u}, {1u, 16384u}, {10u, 1638u}, {63u, 260u}}) {
        GSwrite(u64{width} << 16, gs_register::FRAME_2);
        GSwrite(u64{width} << 16 | u64{width} << 48, gs_register::BITBLTBUF);
        GSwrite64(0x12000090, u64{width} << 9);
        EXPECT_EQ(Gs._gsfb[1].maxRows, rows);
        EXPECT_EQ(Gs.srcbuf.maxRows, rows);
        EXPECT_EQ(Gs.dstbuf.maxRows, rows);
        EXPECT_EQ(Gs._gsdspfb[1].maxRows, rows);
    }
}

TEST_F(Registers, TransferWidthZeroTakesAFractionOfTheLast) {
    const auto destinationWidth = [](u64 field) {
        GSwrite(field << 48, gs_register::BITBLTBUF);
        return Gs.dstbuf.bw;
    };
    EXPECT_EQ(destinationWidth(0), 0u);
    EXPECT_EQ(destinationWidth(10), 640u);
    EXPECT_EQ(destinationWidth(0), 20u);
    EXPECT_EQ(Gs.dstbuf.maxRows, 0x100000u);
    EXPECT_EQ(destinationWidth(0), 20u) << "the fraction is not the last width";
    EXPECT_EQ(destinationWidth(1), 64u);
    EXPECT_EQ(destinationWidth(0), 2u);
}

TEST_F(Registers, PrimitiveAttributesComeFromPrimOrPrmode) {
    using namespace gs_register;
    Gs.primC = 2;
    GSwrite(0x2 << 3, PRMODE);  // AC is 1 at start: ignored
    EXPECT_EQ(Gs.prim->tme, 0u);
    EXPECT_EQ(Gs.primC, 2);
    GSwrite(0x20B, PRIM);  // triangle, gouraud, context 2
    EXPECT_EQ(Gs.prim, &Gs._prim[0]) << "PRMODECONT has not been written";
    EXPECT_EQ(Gs.gsfb, &Gs._gsfb[1]);
    EXPECT_EQ(Gs.primC, 0);

    GSwrite(1, PRMODECONT);  // the other record, all 0
    EXPECT_EQ(Gs.prim, &Gs._prim[1]);
    EXPECT_EQ(Gs.test, &Gs._test[0]) << "the context follows the record";
    GSwrite(0, PRMODECONT);
    EXPECT_EQ(Gs.test, &Gs._test[1]);

    Gs.primC = 1;
    GSwrite(0x7FE, PRIM);  // AC 0: the type alone
    EXPECT_EQ(Gs.prim->type, 6u);
    EXPECT_EQ(Gs.prim->abe, 0u);
    EXPECT_EQ(Gs.primC, 1);
    GSwrite(0x141, PRMODE);  // blended, FST, context 1; the type bits do not count
    EXPECT_EQ(Gs.prim->type, 6u);
    EXPECT_EQ(Gs.prim->iip, 0u);
    EXPECT_EQ(Gs.prim->abe, 1u);
    EXPECT_EQ(Gs.prim->fst, 1u);
    EXPECT_EQ(Gs.zbuf, &Gs._zbuf[0]);
    EXPECT_EQ(Gs.primC, 0);
}

TEST_F(Registers, UnassignedAddressesStoreNothing) {
    const GsImage before = GsImage::now();
    for (const u32 address : {0x0Bu, 0x0Eu, 0x0Fu, 0x13u, 0x1Du, 0x21u, 0x23u, 0x33u, 0x38u, 0x3Au, 0x3Cu,
                              0x3Eu, 0x3Fu, 0x44u, 0x54u, 0x60u, 0x61u, 0x62u, 0xFFu}) {
        GSwrite(~u64{0}, address);
    }
    EXPECT_TRUE(GsImage::now() == before);
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
        {size | u64{3} << 23, 0, 160, 448},
        {size | u64{3} << 23, 3, 160, 224},  // interlaced frames: half the lines
        {size | u64{3} << 23, 1, 160, 448},
        {size | u64{3} << 23, 2, 160, 448},
        {size | u64{1} << 59, 0, 640, 224},
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
    EXPECT_EQ(Gs.magh, 16u);
    EXPECT_EQ(Gs.magv, 1u);
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
    EXPECT_EQ(Gs.gsdspfb, &Gs._gsdspfb[0]);

    // 32-bit writes reach PMODE and DISPFB only, the latter without its upper word.
    GSwrite32(0x12000070, 7);
    EXPECT_EQ(Gs.gsdspfb->fbp, 7u * 2048);
    EXPECT_EQ(Gs.gsdspfb->dbx, 0u);
    const GsImage before = GsImage::now();
    for (const u32 address : {0x12000020u, 0x12000080u, 0x120000A0u, 0x120000E0u, 0x12001000u, 0x12001010u}) {
        GSwrite32(address, ~0u);
    }
    GSwrite64(0x120000E0, ~u64{0});
    GSwrite64(0x12001000, ~u64{0});
    EXPECT_TRUE(GsImage::now() == before);
}

TEST_F(Registers, PrivilegedReads) {
    EXPECT_EQ(GSread64(0x12000400), 0x2000u);
    EXPECT_EQ(GSread32(0x12000400), 0u) << "32-bit reads do not flip the field";
    EXPECT_EQ(GSread64(0x12000400), 0u);
    EXPECT_EQ(GSread64(0x12000400), 0x2000u);
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
    EXPECT_EQ(Gs.gsmode->width, 0u);

    const auto allocate = std::exchange(allocateBuffer, [](std::size_t) -> void* { return nullptr; });
    EXPECT_EQ(GSinit(), -1);
    allocateBuffer = allocate;
    EXPECT_EQ(Gs.vRam, nullptr);
    EXPECT_EQ(Gs.gsmode->width, 0u);
    GifStream().write(gs_register::TRXDIR, 2).write(gs_register::XYZ2, 0).send();  // dropped
    GSgifTransfer2(GifStream().tag(GifStream::packed, 0, 1, 0, true).at(0));
    GSvsync();
    EXPECT_FALSE(GSmakeSnapshot("/nonexistent/"));
    GSshutdown();
}

TEST_F(Registers, LogWritesOnlyWhenOnAndOpen) {
    Log = 1;
    __Log("dropped");
    gsLog = std::tmpfile();
    ASSERT_NE(gsLog, nullptr);
    __Log("%d %s", 7, "x");
    Log = 0;
    __Log("dropped");
    EXPECT_EQ(std::ftell(gsLog), 3);
    std::fclose(std::exchange(gsLog, nullptr));
}

}  // namespace
}  // namespace tarn
