// The toolkit: text panes and their lines, hits, the table of panes.
#include "base/diagnostics.h"
#include "gui/screen.h"
#include "gui/toolkit_extras.h"
#include "surfaces.h"

#include <ctime>

namespace tarn::test {
namespace {

constexpr int width = 120;

class Toolkit : public ToolkitTest {
  protected:
    Toolkit() : ToolkitTest(makeSurface(width, 100)) {}
};

TEST_F(Toolkit, TextPanesShowTheNewestLines) {
    koGUIwidget& pane = add(PaneKind::Text, 0, 0, width, 22 + 4 * 11 + 10);  // room for 4 lines
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
        const koGUItextLine* end = pane.addText(&pane, step.text);
        EXPECT_EQ(end, pane.lines->sentinel());
        EXPECT_EQ(pane.firstLine, step.firstLine) << step.text;
        EXPECT_EQ(pane.dirty, 1);
        pane.internal_draw(&pane, &TarnGUI);
        for (int line = 0; line < 5; ++line) {
            const Runs runs = inkRuns(TarnGUI.surface.get(), 22 + 11 * line);
            const int expected = step.widths[static_cast<std::size_t>(line)];
            EXPECT_EQ(runs, expected != 0 ? (Runs{{3, expected}}) : Runs()) << step.text << line;
        }
    }
    koGUIwidget given = pane;  // a record that the table's entry was copied from works on the same lines
    given.addText(&given, "given");
    pane.addText(&pane, "own");
    EXPECT_EQ(outputOf([&] { koGUIwidget_printAllText(&given); }),
              "-!-\n--\n-%s%n%-\n-\"\n-\n-\"\"-\n-#-\n-given-\n-own-\n");
    const koGUItextLine* before = nullptr;
    for (const koGUItextLine* line = pane.textLines; line != nullptr; line = line->next) {
        EXPECT_EQ(line->prev, before);
        EXPECT_EQ(line->text == nullptr, line->next == nullptr) << "only the sentinel has no text";
        before = line;
    }
}

TEST_F(Toolkit, WhatTheGuestSaysIsShownInLines) {
    koGUIwidget* pane = nullptr;
    while (TarnGUI.nbWidgets <= emuOutputPane) {
        pane = &add(PaneKind::Text, 0, 0, width, 80);
    }
    const auto say = [](Channel channel, const std::string& text) {
        diagnosticSinks.text[static_cast<std::size_t>(channel)](text.c_str());
    };
    const std::string longest(1000, 'x');
    say(Channel::Console, "be");
    say(Channel::Console, "gun\nand");
    say(Channel::EmuOutput, "interrupted");
    say(Channel::Console, longest + "x\n");
    EXPECT_EQ(outputOf([&] { koGUIwidget_printAllText(pane); }),
              "-begun-\n-and-\n-interrupted-\n-" + longest + "-\n-x-\n");
}

TEST_F(Toolkit, LongTextIsWrappedAndOldTextForgotten) {
    koGUIwidget& pane = add(PaneKind::Text, 0, 0, 16, 100);
    pane.keptLines = 6;
    for (const char* text : {"gone", "!", "", "### ### ####!"}) {
        koGUIwidget_addWrappedText(&pane, text);
    }
    EXPECT_EQ(outputOf([&] { koGUIwidget_printAllText(&pane); }),
              "--\n-###-\n-  ##-\n-  #-\n-  ##-\n-  ##!-\n");
    EXPECT_EQ(pane.textLines->prev, nullptr);
    koGUIwidget_replaceText(&pane, std::array<std::string, 1>{"new"});
    EXPECT_EQ(outputOf([&] { koGUIwidget_printAllText(&pane); }), "-new-\n");
}

TEST_F(Toolkit, LinesAreCountedFromTheHeightAndScrollingIsFast) {
    const std::clock_t start = std::clock();
    for (const auto& [h, maxLines] : {std::pair{170U, 13U}, {400U, 34U}, {32U, 0U}}) {
        koGUIwidget& pane = add(PaneKind::Text, 0, 0, 100, h);
        EXPECT_EQ(pane.maxLines, maxLines);
        for (u32 lines = 1; lines <= 400000; ++lines) {
            pane.addText(&pane, "");
            ASSERT_EQ(pane.firstLine, lines > maxLines ? lines - maxLines : 0);
            if (lines % 1000 == 0) {
                pane.internal_draw(&pane, &TarnGUI);
            }
        }
    }
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC) << "costs the list's length";
}

TEST_F(Toolkit, Hits) {
    koGUIwidget& pane = add(PaneKind::Plain, 100, 50, 200, 80);
    struct Case {
        s32 x, y;
        PaneHit hit;
    };
    const Case cases[] = {
        {100, 60, PaneHit::Nothing},   {101, 60, PaneHit::TitleBar},  {280, 60, PaneHit::TitleBar},
        {281, 60, PaneHit::ShadeZone}, {299, 60, PaneHit::ShadeZone}, {300, 60, PaneHit::Nothing},
        {150, 50, PaneHit::Nothing},   {150, 51, PaneHit::TitleBar},  {150, 71, PaneHit::TitleBar},
        {150, 72, PaneHit::Nothing},   {65535, 60, PaneHit::Nothing},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(pane.isClick_TitleBar(&pane, &TarnGUI, c.x, c.y), c.hit) << c.x << ',' << c.y;
    }
}

TEST_F(Toolkit, TheTableHolds256Panes) {
    koGUI_AddWidget(&TarnGUI, nullptr);
    EXPECT_EQ(TarnGUI.nbWidgets, 0U);
    koGUIwidget pane;
    koGUIwidget_init(&pane, PaneKind::Plain, 1, 2, 300, 400, std::string(100, 'x').c_str());
    pane.savedH = 77;
    for (int i = 0; i < 257; ++i) {
        koGUI_AddWidget(&TarnGUI, &pane);
    }
    EXPECT_EQ(TarnGUI.nbWidgets, 256U);
    EXPECT_EQ(TarnGUI.widgets[255].id, 255U);
    EXPECT_EQ(TarnGUI.widgets[255].savedH, 0U) << "the one field that is not copied";
    EXPECT_EQ(TarnGUI.widgets[255].title, std::string(55, 'x'));
}

}  // namespace
}  // namespace tarn::test
