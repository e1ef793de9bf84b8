// Lines and single pixels on surfaces of every pixel size.
#include "gui/line_drawing.h"
#include "gui/toolkit_extras.h"
#include "surfaces.h"

#include <gtest/gtest.h>
#include <set>

namespace tarn::test {
namespace {

using Points = std::set<std::pair<int, int>>;

TEST(Line, SetsItsPixels) {
    struct Case {
        s32 x1, y1, x2, y2;
        Points points;
    };
    const Points wholeRow = {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}};
    const Case cases[] = {
        {2, 5, 5, 5, {{2, 5}, {3, 5}, {4, 5}, {5, 5}}},
        {5, 5, 2, 5, {{2, 5}, {3, 5}, {4, 5}, {5, 5}}},
        {3, 3, 3, 3, {{3, 3}}},
        {0, 0, 3, 1, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        {3, 1, 0, 0, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        {0, 3, 2, 2, {{0, 3}, {1, 3}, {2, 2}}},  // 2.5 goes up
        {2, 4, 4, 6, {{2, 4}, {3, 5}, {4, 6}}},
        {6, 2, 25, 2, {{6, 2}, {7, 2}}},
        {INT32_MIN, 1, INT32_MAX, 1, wholeRow},
        {INT32_MAX, 1, INT32_MIN, 1, wholeRow},
        {INT32_MIN, 7, -1, 7, {}},
        {0, 8, 7, 8, {}},
    };
    for (const int depth : {8, 16, 24, 32}) {
        for (const Case& c : cases) {
            const SurfacePtr across = makeSurface(8, 8, depth);
            const SurfacePtr down = makeSurface(8, 8, depth);
            SDL_drawLine_Kq(across.get(), c.x1, c.y1, c.x2, c.y2, 0x55, 0, 0);
            SDL_drawLine_Kq(down.get(), c.y1, c.x1, c.y2, c.x2, 0x55, 0, lineLocksSurface);
            for (int i = 0; i < 64; ++i) {
                const u32 expected = c.points.contains({i % 8, i / 8}) ? 0x55 : 0;
                EXPECT_EQ(pixelOf(across.get(), i % 8, i / 8), expected) << c.x1 << ',' << c.y1 << ": " << i;
                EXPECT_EQ(pixelOf(down.get(), i / 8, i % 8), expected) << c.x1 << ',' << c.y1 << ": " << i;
            }
        }
    }
}

TEST(Line, PixelsAreStoredByTheirSizeAndClipped) {
    const SurfacePtr surface = makeSurface(4, 2, 24);
    SDL_putPixel(surface.get(), 1, 1, 0x00AABBCC);
    const u8* bytes = static_cast<u8*>(SDL_getPixel(surface.get(), 1, 1));
    ASSERT_EQ(bytes, static_cast<u8*>(surface->pixels) + surface->pitch + 3);
    EXPECT_EQ(std::vector<u8>(bytes, bytes + 4), (std::vector<u8>{0xCC, 0xBB, 0xAA, 0}));
    SDL_putPixel(surface.get(), 2, 0, 0x0000FF);
    SDL_blendPixel(surface.get(), 2, 0, 0x00FF00, 1);
    EXPECT_EQ(pixelOf(surface.get(), 2, 0), 0x0000FEU) << "rounds down, down too";
    for (const auto& [x, y] : {std::pair{-1, 0}, {4, 0}, {0, -1}, {0, 2}, {INT32_MIN, INT32_MAX}}) {
        EXPECT_EQ(SDL_getPixel(surface.get(), x, y), nullptr);
        SDL_putPixel(surface.get(), x, y, 0);
        SDL_blendPixel(surface.get(), x, y, 0, 9);
    }
}

}  // namespace
}  // namespace tarn::test
