// The vertex queue, and the ends of local memory and of numbers; all else that is drawn is held against the
// model.
#include "support/gs_machine.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace tarn::test {
namespace {

using namespace gs_register;

// PRIM: types, and the attributes to be added.
enum Prim : u32 { triangle = 3, triangleStrip, triangleFan, sprite };
constexpr u32 iip = 8, tme = 16, fst = 256;

struct Position {
    u32 x, y;
    friend bool operator==(const Position&, const Position&) = default;
};
using Positions = std::vector<Position>;

class Drawing : public GsMachine {
  protected:
    Drawing() {
        GSwrite(u64{10} << 16, FRAME_1);  // 640 wide at 0
        GSwrite(u64{639} << 16 | u64{447} << 48, SCISSOR_1);
        colour(~0u);
    }

    static void colour(u32 rgba) { GSwrite(rgba | u64{0x3F800000} << 32, RGBAQ); }
    static void xyz(u32 x, u32 y, u32 z = 0, u32 address = XYZ2) {
        GSwrite(x << 4 | y << 20 | u64{z} << 32, address);
    }

    /// Draws, and returns the pixels that are not 0, row by row, and clears them.
    static Positions drawn(u32 prim, const Positions& vertices) {
        GSwrite(prim, PRIM);
        for (const Position& p : vertices) {
            xyz(p.x, p.y);
        }
        Positions result;
        for (u32 i = 0; i < 640 * 448; ++i) {
            if (std::exchange(Gs.vRamUL()[i], 0) != 0) {
                result.push_back({i % 640, i / 640});
            }
        }
        return result;
    }
};

TEST_F(Drawing, TheQueueStepsByType) {
    const Positions c = {{0, 0}, {8, 0}, {0, 8}, {8, 8}, {16, 0}, {16, 16}};
    EXPECT_EQ(drawn(triangleStrip, c),
              drawn(triangle, {c[0], c[1], c[2], c[1], c[2], c[3], c[2], c[3], c[4], c[3], c[4], c[5]}));
    EXPECT_EQ(drawn(triangleFan, c),
              drawn(triangle, {c[0], c[1], c[2], c[0], c[2], c[3], c[0], c[3], c[4], c[0], c[4], c[5]}));
    // A vertex without drawing completes and steps all the same.
    GSwrite(triangleStrip, PRIM);
    xyz(0, 0), xyz(8, 0), xyz(0, 8, 0, XYZ3);
    EXPECT_EQ(Gs.vRamUL()[0], 0u);
    EXPECT_EQ(Gs.primC, 2);
    xyz(8, 8);
    EXPECT_NE(Gs.vRamUL()[640 * 4 + 5], 0u);
}

TEST_F(Drawing, TheQueueCarriesOnlyTheAttributesInUse) {
    for (const u32 prim : {triangleStrip | iip, triangleStrip | tme, triangleStrip | tme | fst}) {
        GSwrite(prim, PRIM);
        for (u32 i = 0; i < 3; ++i) {
            GSwrite(std::bit_cast<u32>(static_cast<f32>(i)) | u64{0x3F800000} << 32, ST);
            GSwrite(i << 4 | i << 20, UV);
            colour(100 * prim + i), xyz(i, 0, i, XYZ3);
        }
        const GsVertex& first = Gs.gsvertex[0];
        EXPECT_TRUE(first.x == 1 && first.z == 1);
        EXPECT_EQ(first.rgba, 100 * prim + (prim & iip ? 1 : 0));
        EXPECT_EQ(first.u, prim & fst ? 1 : 0);
        EXPECT_EQ(first.s, (prim & tme) && !(prim & fst) ? 1.0F : 0.0F);
    }
    // A flat strip is drawn in the last colour, whatever its vertices were given.
    GSwrite(triangleStrip, PRIM);
    colour(1), xyz(0, 0), colour(2), xyz(8, 0), colour(3), xyz(0, 8);
    EXPECT_EQ(Gs.vRamUL()[641], 3u);
    GSwrite(~u64{0}, UV), GSwrite(~u64{0}, XYZ3);
    const GsVertex& whole = Gs.gsvertex[2];
    EXPECT_TRUE(whole.u == 2047 && whole.v == 2047 && whole.x == 4095 && whole.y == 4095 && whole.z == ~0u);
}

TEST_F(Drawing, ASpriteOf32BitTexelsStopsBeyondLocalMemory) {
    GSwrite(0x3FFF | 1 << 14, TEX0_1);  // the last 64 words, 64 texels a row
    Gs.vRamUL()[0xFFFC0] = 0x00808080;
    Gs.vRamUL()[0] = 0x00404040;  // what a row right at the end of memory reads
    GSwrite(sprite | tme | fst, PRIM);
    GSwrite(0, UV), xyz(8, 8), GSwrite(1 << 4 | 9 << 20, UV), xyz(9, 20);
    for (const auto& [row, drawn] : {std::pair{8, true}, {9, true}, {10, false}}) {
        EXPECT_EQ(Gs.vRamUL()[row * 640 + 8] != 0, drawn) << row;
    }
}

TEST_F(Drawing, TheSteepestDepthGradientWrapsInsteadOfTrapping) {
    GSwrite(1 << 16 | 1 << 17, TEST_1);
    GSwrite(triangle, PRIM);  // -2^63 over a width of -1/65536 pixel
    xyz(0, 0, 0x80000000), xyz(1, 1, 0), xyz(3, 3, 0x80000000);
    EXPECT_EQ(std::count(Gs.vRamUL(), Gs.vRamUL() + 640 * 448, 0u), 640 * 448);
}

TEST_F(Drawing, PalettesAreWorkEvenOfASpriteOfNoSize) {
    using namespace pixel_format;
    for (const auto& [texture, palette, words] :
         {std::tuple{PSMT8, PSMCT32, 256u}, {PSMT8, PSMCT16, 128u}, {PSMT4, PSMCT32, 64u}}) {
        GSwrite(u64{texture} << 20 | u64{palette} << 51, TEX0_1);
        const u64 before = Gs.work;
        drawn(sprite | tme | fst, {{3, 3}, {3, 3}});
        EXPECT_EQ(Gs.work - before, words);
    }
}

}  // namespace
}  // namespace tarn::test
