// The layout of panes that do not cover each other, for many pictures and screens.
#include "gui/screen.h"
#include "shell/pane_layout.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

PixelArea areaOf(const PaneFrame& pane) {
    return {pane.x, pane.y, s64{pane.x} + pane.w + 1, s64{pane.y} + pane.h + 1};
}

TEST(PaneLayout, PanesLieApartInTheWindowAndHaveRoom) {
    const std::pair<u32, u32> screens[] = {{16383, 16383}, {1920, 1080}, {1024, 768}, {800, 600}, {640, 480}};
    for (const u32 width : {0U, 1U, 256U, 320U, 500U, 512U, 640U, 1024U, 65535U}) {
        for (const u32 height : {0U, 1U, 224U, 240U, 379U, 448U, 512U, 1080U, 65535U}) {
            for (const auto& [screenWidth, screenHeight] : screens) {
                SCOPED_TRACE(testing::Message() << width << "x" << height << " on " << screenWidth);
                const WindowLayout layout = fittedLayout(width, height, screenWidth, screenHeight);
                const PixelArea inside{10, 10, s64{layout.width} - 10, s64{layout.height} - 10};
                PixelArea all;
                for (std::size_t i = 0; i < layout.panes.size(); ++i) {
                    const PixelArea pane = areaOf(layout.panes[i]);
                    all.extend(pane);
                    EXPECT_TRUE(layout.panes[i].w >= 180 && layout.panes[i].h >= 170)
                        << "titles are readable";
                    for (std::size_t j = 0; j < i; ++j) {
                        PixelArea other = areaOf(layout.panes[j]);
                        other = {other.left - 10, other.top - 10, other.right + 10, other.bottom + 10};
                        EXPECT_FALSE(pane.overlaps(other)) << i << " and " << j;
                    }
                }
                EXPECT_TRUE(all.contains(inside) && inside.contains(all)) << "the window is no larger";
                EXPECT_TRUE(layout.panes[emuOutputPane].w >= 500 && layout.panes[opcodesPane].w >= 250 &&
                            layout.panes[cpuRegistersPane].h >= 400);
                if (screenWidth >= 1024) {
                    EXPECT_TRUE(layout.width <= screenWidth && layout.height <= screenHeight);
                }
                const PaneFrame& picture = layout.panes[videoOutputPane];
                if (u64{width} + 600 <= screenWidth && u64{height} + 250 <= screenHeight) {
                    EXPECT_TRUE(picture.w >= width + 2 && picture.h >= height + titleBarHeight);
                }
            }
        }
    }
}

}  // namespace
}  // namespace tarn::test
