// Tests the toolkit: what panes look like pixel by pixel, their lines, hits, the table.
#include "gui/kogui.h"
#include "gui/text_sinks.h"
#include "support/machine_test.h"
#include "surfaces.h"

#include <ctime>

namespace tarn::test {
namespace {

constexpr u32 colour(u32 red, u32 green, u32 blue) { return 0xFF000000 | blue << 16 | green << 8 | red; }
constexpr u32 background = colour(0, 105, 153);
constexpr u32 frame = colour(0, 37, 73);
constexpr u32 titleBar = colour(0, 101, 137);
constexpr u32 shadeBox = colour(204, 204, 204);
constexpr u32 plainBody = colour(170, 170, 170);

constexpr int width = 120;
constexpr int height = 100;

/// TarnGUI on a surface in memory.
class Toolkit : public testing::Test {
  protected:
    Toolkit() {
        resetMachine();
        TarnGUI.nbWidgets = 0;
        TarnGUI.surface =
            SDL_CreateRGBSurface(SDL_SWSURFACE, width, height, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000);
        TarnGUI.font1 = makeFont(500, 9, steppedGlyphs(94)).release();
        TarnGUI.font2 = makeFont(500, 11, steppedGlyphs(94)).release();
    }
    ~Toolkit() override {
        EXPECT_EQ(outputOf([] { koGUI_Destroy(&TarnGUI); }), "Destroy koGUI\n");
        resetMachine();
    }

    static koGUIwidget& add(u8 kind, s32 x, s32 y, u32 w, u32 h, const char* title = "") {
        koGUIwidget pane;
        koGUIwidget_init(&pane, kind, x, y, w, h, title);
        koGUI_AddWidget(&TarnGUI, &pane);
        return TarnGUI.widgets[TarnGUI.nbWidgets - 1];
    }
    static void draw(koGUIwidget& pane) {
        pane.external_draw(&pane, &TarnGUI);
        pane.internal_draw(&pane, &TarnGUI);
    }
};

TEST_F(Toolkit, PanesPixelByPixel) {
    const SurfacePtr picture = makeSurface(20, 10);
    SDL_FillRect(picture.get(), nullptr, 0x123456);
    struct Case {
        u8 kind;
        s32 x, y;
        u32 w, h;
        u32 body;
    };
    const Case cases[] = {
        {7, 10, 12, 60, 50, plainBody},          {textPane, 0, 0, 40, 30, colour(0, 0, 0)},
        {textPane, 80, 60, 70, 60, 0xFF000000},  {3, 5, 5, 50, 22, 0},
        {imagePane, 30, 20, 22, 32, 0xFF123456},
    };
    for (const Case& c : cases) {
        koGUI_ClearScreen(&TarnGUI);
        koGUIwidget& pane = add(c.kind, c.x, c.y, c.w, c.h, "#%");  // glyphs of 3 and 2 columns
        if (c.kind == imagePane) {
            pane.attachImage(&pane, picture.get());
        }
        draw(pane);
        const int right = c.x + static_cast<int>(c.w);
        const int bottom = c.y + static_cast<int>(c.h);
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width;
            const int y = i / width;
            const bool inside = x >= c.x && x <= right && y >= c.y && y <= bottom;
            const bool onFrame = inside && (x == c.x || x == right || y == c.y || y == bottom);
            // The frame is a pixel wider and higher than the pane, the fillings stop two short of it.
            const bool filled = x > c.x && x < right - 1;
            u32 expected = background;
            if (filled && y >= c.y + 22 && y < bottom) {
                expected = c.body;
            } else if (x >= right - 22 && x < right - 6 && y >= c.y + 3 && y < c.y + 19) {
                expected = shadeBox;
            } else if (x >= c.x + 2 && x < c.x + 7 && y >= c.y + 2 && y < c.y + 10) {
                expected = 0xFF000000 | inkColour;
            } else if (filled && y > c.y && y < c.y + 21) {
                expected = titleBar;
            } else if (onFrame || (y == c.y + 21 && x >= c.x && x <= right - 2)) {
                expected = frame;
            }
            ASSERT_EQ(pixelOf(TarnGUI.surface, x, y), expected) << c.x << ": " << x << ',' << y;
        }
    }
}

TEST_F(Toolkit, TextPanesShowTheNewestLines) {
    koGUIwidget& pane = add(textPane, 0, 0, width, 22 + 4 * 11 + 10);  // room for 4 lines
    struct Step {
        const char* text;
        u32 firstLine;
        std::vector<int> widths;  // of what is drawn on the lines
    };
    const Step steps[] = {
        {"!", 0, {1, 0, 0, 0, 0}},     {"", 0, {1, 0, 0, 0, 0}},      {"%s%n%", 0, {1, 0, 11, 0, 0}},
        {"\"\n", 0, {1, 0, 11, 2, 0}}, {"\"\"", 1, {0, 11, 2, 4, 0}}, {"#", 2, {11, 2, 4, 3, 0}},
    };
    for (const Step& step : steps) {
        pane.dirty = 0;
        EXPECT_EQ(pane.addText(&pane, step.text), pane.sentinel);
        EXPECT_EQ(pane.firstLine, step.firstLine) << step.text;
        EXPECT_EQ(pane.dirty, 1);
        pane.internal_draw(&pane, &TarnGUI);
        for (int line = 0; line < 5; ++line) {
            const Runs runs = inkRuns(TarnGUI.surface, 22 + 11 * line);
            const int expected = step.widths[static_cast<std::size_t>(line)];
            EXPECT_EQ(runs, expected != 0 ? (Runs{{3, expected}}) : Runs()) << step.text << line;
        }
    }
    EXPECT_EQ(outputOf([&] { koGUIwidget_printAllText(&pane); }), "-!-\n--\n-%s%n%-\n-\"\n-\n-\"\"-\n-#-\n");
    const koGUItextLine* before = nullptr;
    for (const koGUItextLine* line = pane.textLines; line != nullptr; line = line->next) {
        EXPECT_EQ(line->prev, before);
        EXPECT_EQ(line->text == nullptr, line->next == nullptr) << "only the sentinel has no text";
        before = line;
    }
}

TEST_F(Toolkit, LinesAreCountedFromTheHeightAndScrollingIsFast) {
    const std::clock_t start = std::clock();
    for (const auto& [h, maxLines] : {std::pair{170U, 13U}, {400U, 34U}, {32U, 0U}}) {
        koGUIwidget& pane = add(textPane, 0, 0, 100, h);
        EXPECT_EQ(pane.maxLines, maxLines);
        for (u32 lines = 1; lines <= 400000; ++lines) {
            pane.addText(&pane, "");
            ASSERT_EQ(pane.firstLine, lines > maxLines ? lines - maxLines : 0);
            if (lines % 1000 == 0) {
                draw(pane);
            }
        }
    }
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC) << "costs the list's length";
}

TEST_F(Toolkit, Hits) {
    koGUIwidget& pane = add(0, 100, 50, 200, 80);
    struct Case {
        s32 x, y;
        int hit;
    };
    const Case cases[] = {
        {100, 60, hitNothing},   {101, 60, hitTitleBar}, {280, 60, hitTitleBar},  {281, 60, hitShadeZone},
        {299, 60, hitShadeZone}, {300, 60, hitNothing},  {150, 50, hitNothing},   {150, 51, hitTitleBar},
        {150, 71, hitTitleBar},  {150, 72, hitNothing},  {65535, 60, hitNothing},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(pane.isClick_TitleBar(&pane, &TarnGUI, c.x, c.y), c.hit) << c.x << ',' << c.y;
    }
}

TEST_F(Toolkit, TheTableHolds256Panes) {
    koGUI_AddWidget(&TarnGUI, nullptr);
    EXPECT_EQ(TarnGUI.nbWidgets, 0U);
    koGUIwidget pane;
    koGUIwidget_init(&pane, 0, 1, 2, 300, 400, std::string(100, 'x').c_str());
    pane.savedH = 77;
    for (int i = 0; i < 257; ++i) {
        koGUI_AddWidget(&TarnGUI, &pane);
    }
    EXPECT_EQ(TarnGUI.nbWidgets, 256U);
    EXPECT_EQ(TarnGUI.widgets[255].id, 255U);
    EXPECT_EQ(TarnGUI.widgets[255].savedH, 0U) << "the one field that is not copied";
    EXPECT_EQ(TarnGUI.widgets[255].title, std::string(55, 'x'));
}

TEST_F(Toolkit, SinksAppendToTheirPanes) {
    PrintToEmuOutput("there is no pane yet");
    MarkVideoOutputDirty();
    makePanes();
    paneChanged = false;
    PrintToOpcodeOutput("%d\n");
    EXPECT_TRUE(paneChanged);
    PrintToRegistersOutput("three");
    PrintfToEmuOutput("%d %s", 5, std::string(2000, 'x').c_str());
    EXPECT_EQ(paneLines(paneEmuOutput), (Lines{"5 " + std::string(1021, 'x')}));
    EXPECT_EQ(paneLines(paneOpcodes), Lines{"%d\n"});
    EXPECT_EQ(paneLines(paneCpuRegisters), Lines{"three"});
}

}  // namespace
}  // namespace tarn::test
