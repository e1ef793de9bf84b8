// What the toolkit's tests draw on: surfaces in memory, fonts of solid glyphs, panes on them.
#pragma once

#include "gui/bitmap_font.h"
#include "gui/pixel_access.h"
#include "support/machine_test.h"

#include <utility>
#include <vector>

namespace tarn::test {

constexpr u32 keyColour = 0xFF00FF;
constexpr u32 inkColour = 0xC0C8D0;

/// A black surface with red in the lowest bits.
inline SurfacePtr makeSurface(int width, int height, int depth = 32) {
    const bool wide = depth >= 24;
    return SurfacePtr(SDL_CreateRGBSurface(SDL_SWSURFACE, width, height, depth, wide ? 0xFF : 0x001F,
                                           wide ? 0xFF00 : 0x07E0, wide ? 0xFF0000 : 0xF800, 0));
}

inline u32 pixelOf(const SDL_Surface* surface, s32 x, s32 y) {
    const u8* address = pixelInPicture(surface, x, y);
    return address != nullptr ? loadPixel(address, surface->format->BytesPerPixel) : 0xDEADBEEF;
}

/// First column and width of a glyph, or of ink in a drawing.
using Runs = std::vector<std::pair<int, int>>;

/// The image of a font whose glyphs, markers included, are solid.
inline SurfacePtr makeStrip(int width, int height, const Runs& glyphs) {
    SurfacePtr strip = makeSurface(width, height);
    SDL_FillRect(strip.get(), nullptr, keyColour);
    for (const auto& [first, columns] : glyphs) {
        SDL_Rect glyph{static_cast<Sint16>(first), 0, static_cast<Uint16>(columns),
                       static_cast<Uint16>(height)};
        SDL_FillRect(strip.get(), &glyph, inkColour);
    }
    return strip;
}
inline FontPtr makeFont(int width, int height, const Runs& glyphs) {
    return LoadFontFromSurface(makeStrip(width, height, glyphs));
}

/// Glyphs from "!" up, of the widths 1, 2, 3, 1, 2, ...
inline Runs steppedGlyphs(int count) {
    Runs runs;
    for (int i = 0; i < count; ++i) {
        runs.push_back({2 + 5 * i, i % 3 + 1});
    }
    return runs;
}

/// Where a row of the surface is not black.
inline Runs inkRuns(const SDL_Surface* surface, int y = 0) {
    Runs runs;
    for (int x = 0; x < surface->w; ++x) {
        if ((pixelOf(surface, x, y) & 0xFFFFFF) == 0) {
            continue;
        }
        if (!runs.empty() && runs.back().first + runs.back().second == x) {
            ++runs.back().second;
        } else {
            runs.push_back({x, 1});
        }
    }
    return runs;
}

/// TarnGUI on a surface in memory, without panes.
class ToolkitTest : public testing::Test {
  protected:
    explicit ToolkitTest(SurfacePtr surface) {
        resetMachine();
        TarnGUI = {};
        TarnGUI.surface = std::move(surface);
        TarnGUI.font2 = makeFont(500, 11, steppedGlyphs(94));
    }
    ~ToolkitTest() override {
        EXPECT_EQ(outputOf([] { koGUI_Destroy(&TarnGUI); }), "Destroy koGUI\n");
        resetMachine();
    }

    static koGUIwidget& add(PaneKind kind, s32 x, s32 y, u32 w, u32 h) {
        koGUIwidget pane;
        koGUIwidget_init(&pane, kind, x, y, w, h, "");
        koGUI_AddWidget(&TarnGUI, &pane);
        return TarnGUI.widgets[TarnGUI.nbWidgets - 1];
    }
};

}  // namespace tarn::test
