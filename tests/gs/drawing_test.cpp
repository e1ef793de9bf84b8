// Corner cases of drawing, through the registers: expectations worked out by hand.
#include "gs/gs.h"
#include "gs/gs_state.h"
#include "gs/registers.h"
#include "shell/settings.h"

#include <algorithm>
#include <bit>
#include <vector>

#include <gtest/gtest.h>

namespace tarn {
namespace {

using namespace gs_register;

// PRIM: types, and the attributes to be added.
enum Prim : u32 {
    point,
    line,
    lineStrip,
    triangle,
    triangleStrip,
    triangleFan,
    sprite,
    reserved,
    iip = 8,
    tme = 16,
    abe = 64,
    fst = 256,
};

struct Position {
    s32 x;
    s32 y;
    friend bool operator==(const Position&, const Position&) = default;
    friend std::ostream& operator<<(std::ostream& out, Position p) { return out << p.x << "," << p.y; }
};
using Positions = std::vector<Position>;

constexpr u32 white = 0xFFFFFFFF;
constexpr u32 depthBase = 0x80000;
constexpr u32 textureBase = 0xC0000;

class Drawing : public testing::Test {
  protected:
    void SetUp() override {
        GSreset();
        ASSERT_EQ(GSinit(), 0);
        GSwrite(u64{10} << 16, FRAME_1);  // 640 wide at 0
        GSwrite(depthBase / 2048, ZBUF_1);
        GSwrite(u64{639} << 16 | u64{447} << 48, SCISSOR_1);
        texture(0, 0);
        colour(white);
    }
    void TearDown() override {
        Settings.blend = 0;
        GSreset();
    }

    static void colour(u32 rgba, f32 q = 1) { GSwrite(rgba | u64{std::bit_cast<u32>(q)} << 32, RGBAQ); }
    static void uv(u32 u, u32 v) { GSwrite(u << 4 | v << 20, UV); }
    static void st(f32 s, f32 t) { GSwrite(std::bit_cast<u32>(s) | u64{std::bit_cast<u32>(t)} << 32, ST); }
    static void xyz(u32 x, u32 y, u32 z = 0, u32 address = XYZ2) {
        GSwrite((x << 4) | (y << 20) | u64{z} << 32, address);
    }
    static void primitive(u32 prim, const Positions& vertices, u32 z = 0) {
        GSwrite(prim, PRIM);
        for (const Position& p : vertices) {
            xyz(static_cast<u32>(p.x), static_cast<u32>(p.y), z);
        }
    }
    /// A 64 × 64 texture at textureBase.
    static void texture(u32 format, u32 function) {
        GSwrite(textureBase / 64 | 1 << 14 | format << 20 | 6 << 26 | u64{6} << 30 | u64{function} << 35,
                TEX0_1);
    }
    static void test(u32 ate, u32 atst, u32 aref, u32 zte = 0, u32 ztst = 0) {
        GSwrite(ate | atst << 1 | aref << 4 | zte << 16 | ztst << 17, TEST_1);
    }
    static u32& pixel(s32 x, s32 y) { return Gs.vRamUL[y * 640 + x]; }
    static u32& depth(s32 x, s32 y) { return Gs.vRamUL[depthBase + static_cast<u32>(y * 640 + x)]; }

    /// The pixels that are not 0, row by row, and clears them.
    static Positions take() {
        Positions result;
        for (s32 i = 0; i < 640 * 448; ++i) {
            if (Gs.vRamUL[i] != 0) {
                result.push_back({i % 640, i / 640});
                Gs.vRamUL[i] = 0;
            }
        }
        return result;
    }
    static std::size_t taken() { return take().size(); }
};

TEST_F(Drawing, LinesLeaveTheirEndOutAndTiesGoByTheirDirection) {
    const struct {
        Positions ends;
        Positions pixels;
    } cases[] = {
        {{{0, 0}, {5, 0}}, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}}},
        {{{5, 0}, {0, 0}}, {{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}},
        {{{0, 0}, {4, 2}}, {{0, 0}, {1, 1}, {2, 1}, {3, 2}}},
        {{{4, 2}, {0, 0}}, {{1, 1}, {2, 1}, {3, 2}, {4, 2}}},
        {{{0, 0}, {2, 4}}, {{0, 0}, {1, 1}, {1, 2}, {2, 3}}},
        {{{3, 0}, {0, 3}}, {{3, 0}, {2, 1}, {1, 2}}},
        {{{7, 7}, {7, 7}}, {}},
        {{{638, 1}, {700, 1}}, {{638, 1}}},  // the end is moved onto the scissor's last column
    };
    for (const auto& [ends, pixels] : cases) {
        for (const u32 shading : {0u, u32{iip}}) {
            primitive(line | shading, ends);
            EXPECT_EQ(take(), pixels) << "from " << ends[0] << " to " << ends[1];
        }
    }
}

TEST_F(Drawing, PointsAreDiscardedOutsideAndTakeNoTests) {
    test(1, 0, 0, 1, 0);  // both NEVER
    primitive(point, {{639, 447}, {640, 5}, {5, 448}});
    EXPECT_EQ(take(), (Positions{{639, 447}}));
    GSwrite(u64{3} << 4, XYOFFSET_1);
    primitive(point, {{2, 0}, {3, 0}});
    EXPECT_EQ(take(), (Positions{{0, 0}}));
}

TEST_F(Drawing, SpritesLeaveOutTheRightColumnAndTheBottomRow) {
    primitive(sprite, {{10, 10}, {12, 12}});
    EXPECT_EQ(take(), (Positions{{10, 10}, {11, 10}, {10, 11}, {11, 11}}));
    primitive(sprite, {{12, 12}, {10, 10}});
    EXPECT_EQ(taken(), 0u);
}

TEST_F(Drawing, TrianglesLeaveOutTheBottomRowAndTheRightEdge) {
    primitive(triangle, {{10, 10}, {20, 10}, {10, 20}});
    const Positions pixels = take();
    EXPECT_EQ(pixels.front(), (Position{10, 10}));
    EXPECT_EQ(pixels[9], (Position{19, 10}));
    EXPECT_EQ(pixels[10], (Position{10, 11}));
    EXPECT_EQ(pixels.back(), (Position{10, 19}));
    EXPECT_EQ(pixels.size(), 10u + 9 + 8 + 7 + 6 + 5 + 4 + 3 + 2 + 1);
    primitive(triangle, {{10, 10}, {20, 10}, {30, 10}});
    primitive(triangle, {{10, 10}, {20, 20}, {30, 30}});
    EXPECT_EQ(taken(), 0u);
}

TEST_F(Drawing, OnlyUntexturedVerticesEndAtRow1023) {
    GSwrite(u64{639} << 16 | u64{2047} << 48, SCISSOR_1);
    const Positions corners = {{0, 1020}, {4, 1020}, {0, 1500}};
    primitive(triangle, corners);
    EXPECT_NE(pixel(0, 1022), 0u);
    EXPECT_EQ(pixel(0, 1023), 0u);
    GSwrite(0x3FFF, TEX0_1);
    std::fill_n(Gs.vRamUL + 0xFFFC0, 64, 1);
    primitive(triangle | tme | fst, corners);
    EXPECT_NE(pixel(0, 1300), 0u);
}

TEST_F(Drawing, ModulationSaturatesAndDropsAlpha) {
    Gs.vRamUL[textureBase] = 0x80FF8040;
    const Positions corners = {{0, 0}, {4, 0}, {0, 4}};
    const struct {
        u32 prim, function, rgba, expected;
    } cases[] = {
        {triangle | tme | fst, 0, 0x80808080, 0x00FF8040}, {triangle | tme | fst, 0, 0xFFFFFFFF, 0x00FFFF7F},
        {triangle | tme | fst, 1, 0x00000000, 0x80FF8040}, {triangle | tme | fst, 3, 0x00000000, 0x80FF8040},
        {triangle | tme | fst | iip, 0, 0, 0x80FF8040},    {triangle | iip, 0, 0xFF123456, 0x00123456},
    };
    for (const auto& [prim, function, rgba, expected] : cases) {
        texture(19, function);  // triangles read words whatever the format
        GSwrite(prim, PRIM);
        for (const Position& p : corners) {
            colour(rgba);
            uv(0, 0);
            xyz(static_cast<u32>(p.x), static_cast<u32>(p.y));
        }
        EXPECT_EQ(pixel(1, 1), expected) << "function " << function << " colour " << std::hex << rgba;
    }
    texture(0, 1);
    colour(0x40808080);
    GSwrite(sprite | tme | fst, PRIM);  // a sprite is always modulated, alpha too
    uv(0, 0), xyz(8, 8), uv(1, 1), xyz(20, 20);
    EXPECT_EQ(pixel(8, 8), 0x40FF8040u);
    EXPECT_EQ(pixel(9, 8), 0u) << "the row ends where the texels do";
    EXPECT_EQ(pixel(8, 9), 0u);
}

TEST_F(Drawing, TexelsFollowTheScissorAndPerspectiveDividesByQ) {
    for (u32 i = 0; i < 64 * 64; ++i) {
        Gs.vRamUL[textureBase + i] = i + 1;
    }
    texture(0, 0);
    colour(0x80808080);
    GSwrite(u64{10} | u64{639} << 16 | u64{10} << 32 | u64{447} << 48, SCISSOR_1);
    GSwrite(sprite | tme | fst, PRIM);
    uv(2, 3), xyz(5, 5), uv(22, 23), xyz(25, 25);
    EXPECT_EQ(pixel(10, 10), 64u * 8 + 7 + 1);
    GSwrite(sprite | tme, PRIM);
    colour(0x80808080, 2.0F), st(0.25F, 0.5F), xyz(20, 20);    // texel 8, 16
    colour(0x80808080, -0.5F), st(-0.5F, -0.5F), xyz(30, 30);  // texel 64, 64
    EXPECT_EQ(pixel(20, 20), 64u * 16 + 8 + 1);
    colour(0x80808080, -0.0F), st(1, 1), xyz(40, 40);  // texel 0, 0
    colour(0x80808080, 1.0F), st(1, 1), xyz(50, 50);
    EXPECT_EQ(pixel(40, 40), 1u);
}

TEST_F(Drawing, ASpriteOf32BitTexelsStopsBeyondLocalMemory) {
    GSwrite(0x3FFF | 1 << 14, TEX0_1);  // the last 64 words, 64 texels a row
    Gs.vRamUL[0xFFFC0] = 0x00808080;
    Gs.vRamUL[0] = 0x00404040;  // what a row right at the end of memory reads, and the sprite then draws over
    colour(0x80808080);
    GSwrite(sprite | tme | fst, PRIM);
    uv(0, 0), xyz(8, 8), uv(1, 9), xyz(9, 20);
    EXPECT_EQ(take(), (Positions{{0, 0}, {8, 8}, {8, 9}}));
}

TEST_F(Drawing, TexelsThatTheRowItselfDrawsAreSeen) {
    // A texture laid over the frame and one pixel behind smears the first pixel along the row.
    pixel(0, 0) = 0x00123456;
    GSwrite(u64{10} << 14, TEX0_1);
    colour(0x80808080);
    GSwrite(sprite | tme | fst, PRIM);
    uv(0, 0), xyz(1, 0), uv(40, 1), xyz(41, 1);
    EXPECT_EQ(std::count(Gs.vRamUL, Gs.vRamUL + 41, 0x00123456u), 41);
    // The same over the depth buffer: each pixel shows the depth of the one before.
    GSwrite(u64{depthBase / 64} | u64{10} << 14 | u64{1} << 35, TEX0_1);
    test(0, 0, 0, 1, 1);
    GSwrite(triangle | tme | fst, PRIM);
    uv(0, 0), xyz(1, 0, 7), uv(40, 0), xyz(41, 0, 7), uv(0, 0), xyz(1, 1, 7);
    EXPECT_EQ(pixel(1, 0), 0u);
    EXPECT_EQ(std::count(Gs.vRamUL, Gs.vRamUL + 41, 7u), 39);
}

TEST_F(Drawing, PalettesReorderAndExpand) {
    u8* texels = Gs.vRam + textureBase * 4;
    texels[0] = 8;
    texels[1] = 0x21;
    u32* palette = Gs.vRamUL + 0xD0000;
    palette[16] = 0xAABBCCDD;
    const u64 tex0 = textureBase / 64 | 1 << 14 | u64{0xD0000 / 64} << 37;
    const auto draw = [](u64 registers) {
        GSwrite(registers, TEX0_1);
        GSwrite(sprite | tme | fst, PRIM);
        uv(0, 0), xyz(0, 0), uv(4, 1), xyz(4, 1);
    };
    draw(tex0 | 19 << 20);
    EXPECT_EQ(pixel(0, 0), 0xAABBCCDD) << "index 8 is word 16 of the block";
    palette[1] = 0x11, palette[2] = 0x22;
    draw(tex0 | 20 << 20);
    EXPECT_EQ(pixel(2, 0), 0x11u) << "the low nibble comes first";
    EXPECT_EQ(pixel(3, 0), 0x22u);
    palette[4] = 0x7FFF8000;  // entries 8 and 9
    GSwrite(0x40 | u64{0xC0} << 32, TEXA);
    draw(tex0 | 19 << 20 | u64{2} << 51);
    EXPECT_EQ(pixel(0, 0), 0xC0000000);
    palette[4] = 0;
    draw(tex0 | 19 << 20 | u64{2} << 51);
    EXPECT_EQ(pixel(0, 0), 0x40000000u);
    GSwrite(0x40 | 1 << 15, TEXA);
    draw(tex0 | 19 << 20 | u64{2} << 51);
    EXPECT_EQ(pixel(0, 0), 0u) << "transparent black";
    palette[2 * 64 * 5 + 3 * 16 + 16] = 0x99;
    GSwrite(2 | 3 << 6 | 5 << 12, TEXCLUT);  // 2 × 64 wide, column 3 × 16, row 5
    draw(tex0 | 19 << 20 | u64{1} << 55);
    EXPECT_EQ(pixel(0, 0), 0x99u);
}

TEST_F(Drawing, AlphaAndDepthTests) {
    enum Result { nothing, depthOnly, both };
    const struct {
        u32 ate, atst, aref, alpha, ztst, z, stored;
        Result triangles, sprites;
    } cases[] = {
        {0, 0, 0, 0, 1, 5, 9, both, both},             // the test is off
        {1, 0, 0, 0, 1, 5, 9, depthOnly, depthOnly},   // alpha NEVER
        {1, 5, 0x80, 0x80, 2, 5, 5, both, both},       // GEQUAL and GEQUAL
        {1, 5, 0x80, 0x7F, 2, 5, 5, depthOnly, both},  // a compared sprite takes no alpha test
        {1, 1, 0, 0, 3, 5, 5, nothing, nothing},       // GREATER
        {1, 1, 0, 0, 3, 6, 5, both, both},
        {1, 1, 0, 0, 2, 0xFFFFFFFF, 0x7FFFFFFF, both, both},  // unsigned
        {1, 1, 0, 0, 0, 5, 0, nothing, nothing},              // depth NEVER
    };
    for (const auto& c : cases) {
        for (const u32 type : {triangle, sprite}) {
            pixel(1, 1) = 0;
            std::fill_n(Gs.vRamUL + depthBase, 640 * 8, c.stored);
            test(c.ate, c.atst, c.aref, 1, c.ztst);
            colour(c.alpha << 24 | 0x123456);
            primitive(type, type == sprite ? Positions{{0, 0}, {4, 4}} : Positions{{0, 0}, {4, 0}, {0, 4}},
                      c.z);
            const Result expected = type == sprite ? c.sprites : c.triangles;
            const std::size_t number = static_cast<std::size_t>(&c - cases);
            EXPECT_EQ(pixel(1, 1) != 0, expected == both) << "case " << number << " type " << type;
            EXPECT_EQ(depth(1, 1), expected == nothing ? c.stored : c.z)
                << "case " << number << " type " << type;
        }
    }
}

TEST_F(Drawing, TheSteepestDepthGradientWrapsInsteadOfTrapping) {
    test(0, 0, 0, 1, 1);
    GSwrite(triangle, PRIM);  // -2^63 over a width of -1/65536 pixel
    xyz(0, 0, 0x80000000), xyz(1, 1, 0), xyz(3, 3, 0x80000000);
    EXPECT_EQ(taken(), 0u);
}

TEST_F(Drawing, BlendingIsOptIn) {
    GSwrite(0 | 1 << 2 | 0 << 4 | 1 << 6, ALPHA_1);  // source over destination by source alpha
    const auto result = [](u32 rgba) {
        pixel(0, 0) = 0x80204060;
        colour(rgba);
        primitive(sprite | abe, {{0, 0}, {1, 1}});
        return pixel(0, 0);
    };
    EXPECT_EQ(result(0x40FFFFFF), 0x40FFFFFFu);
    Settings.blend = 1;
    EXPECT_EQ(result(0x80FFFFFF), 0x00FFFFFFu) << "128 is unity, alpha comes out 0";
    EXPECT_EQ(result(0x40204061), 0x00204060u) << "((0x61 - 0x60) * 0x40 >> 7) is 0";
    EXPECT_EQ(result(0x4020405F), 0x0020405Fu) << "and for -1 it is -1";
    test(1, 5, 1);
    EXPECT_EQ(result(0x80FFFFFF), 0x80204060u) << "the alpha test sees the blended alpha";
}

TEST_F(Drawing, TheQueueStepsByType) {
    const Positions corners = {{0, 0}, {8, 0}, {0, 8}, {8, 8}, {16, 0}, {16, 16}};
    const auto model = [](std::initializer_list<Positions> triangles) {
        for (const Positions& t : triangles) {
            primitive(triangle, t);
        }
        return take();
    };
    const Positions& c = corners;
    const auto drawn = [&](u32 type) {
        primitive(type, corners);
        return take();
    };
    const Positions list = model({{c[0], c[1], c[2]}, {c[3], c[4], c[5]}});
    const Positions strip =
        model({{c[0], c[1], c[2]}, {c[1], c[2], c[3]}, {c[2], c[3], c[4]}, {c[3], c[4], c[5]}});
    const Positions fan =
        model({{c[0], c[1], c[2]}, {c[0], c[2], c[3]}, {c[0], c[3], c[4]}, {c[0], c[4], c[5]}});
    EXPECT_EQ(drawn(triangle), list);
    EXPECT_EQ(drawn(triangleStrip), strip);
    EXPECT_EQ(drawn(triangleFan), fan);
    EXPECT_EQ(drawn(reserved), Positions{});
    EXPECT_EQ(Gs.primC, 0);
    primitive(lineStrip, {{0, 0}, {2, 0}, {2, 2}});
    EXPECT_EQ(take(), (Positions{{0, 0}, {1, 0}, {2, 0}, {2, 1}}));

    // A vertex without drawing completes and steps all the same.
    GSwrite(triangleStrip, PRIM);
    xyz(0, 0), xyz(8, 0), xyz(0, 8, 0, XYZ3);
    EXPECT_EQ(taken(), 0u);
    EXPECT_EQ(Gs.primC, 2);
    xyz(8, 8);
    const Positions next = take();
    EXPECT_EQ(next, model({{c[1], c[2], c[3]}}));
}

TEST_F(Drawing, TheQueueCarriesOnlyTheAttributesInUse) {
    for (const u32 prim : {triangleStrip | iip, triangleStrip | tme, triangleStrip | tme | fst}) {
        GSwrite(prim, PRIM);
        for (u32 i = 0; i < 3; ++i) {
            colour(100 * prim + i), st(static_cast<f32>(i), 1), uv(i, i), xyz(i, 0, i, XYZ3);
        }
        EXPECT_EQ(Gs.gsvertex[0].x, 1);
        EXPECT_EQ(Gs.gsvertex[0].z, 1u);
        EXPECT_EQ(Gs.gsvertex[0].rgba, 100 * prim + (prim & iip ? 1 : 0));
        EXPECT_EQ(Gs.gsvertex[0].u, prim & fst ? 1 : 0);
        EXPECT_EQ(Gs.gsvertex[0].s, (prim & tme) && !(prim & fst) ? 1.0F : 0.0F);
    }
    // A flat strip is drawn in the last colour, whatever its vertices were given.
    GSwrite(triangleStrip, PRIM);
    colour(1), xyz(0, 0), colour(2), xyz(8, 0), colour(3), xyz(0, 8);
    EXPECT_EQ(pixel(1, 1), 3u);
}

TEST_F(Drawing, RowsWrapAtTheEndOfLocalMemory) {
    test(0, 0, 0, 1, 1);
    for (const bool frameWraps : {true, false}) {
        std::fill_n(Gs.vRamUL, localMemoryWords, 0);
        GSwrite((frameWraps ? 511 : 64) | 10 << 16, FRAME_1);
        GSwrite(frameWraps ? 64 : 511, ZBUF_1);
        primitive(sprite, {{0, 0}, {640, 8}}, 7);  // the corner is moved to column 639, so that is left out
        for (const auto& [base, value] : {std::pair{Gs.gsfb->fbp, white}, {Gs.zbuf->zbp, 7u}}) {
            for (u32 i = 0; i < 640 * 8; ++i) {
                ASSERT_EQ(Gs.vRamUL[(base + i) % localMemoryWords], i % 640 == 639 ? 0 : value) << i;
            }
        }
        EXPECT_EQ(std::count(Gs.vRamUL, Gs.vRamUL + localMemoryWords, 0u),
                  s64{localMemoryWords} - 2 * 639 * 8);
    }
}

TEST_F(Drawing, AFrameOfWidth0HoldsLinesInTheWordBeforeIt) {
    GSwrite(1, FRAME_1);
    primitive(line, {{0, 0}, {5, 5}});
    primitive(triangle, {{0, 0}, {40, 0}, {0, 40}});
    primitive(sprite, {{0, 0}, {40, 40}});
    EXPECT_EQ(Gs.vRamUL[2047], white);
    EXPECT_EQ(std::count(Gs.vRamUL, Gs.vRamUL + localMemoryWords, 0u), s64{localMemoryWords} - 1);
}

}  // namespace
}  // namespace tarn
