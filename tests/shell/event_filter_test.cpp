// Tests the event filter with events made up here: what tests of the window do not reach.
#include "shell/event_filter.h"
#include "support/machine_test.h"

namespace tarn::test {
namespace {

/// The first two panes overlap; their title bars both lie under (30, 15).
class Filter : public testing::Test {
  protected:
    Filter() {
        resetMachine();
        EventFilter = {};
        place(0, 0, 5);
        place(1, 20, 5);
        place(2, 300, 5);
        place(3, 300, 200);
    }
    ~Filter() override { resetMachine(); }

    static void place(u32 index, s32 x, s32 y) {
        pane(index).x = x, pane(index).y = y, pane(index).w = 100, pane(index).h = 170, pane(index).dirty = 0;
    }
    static koGUIwidget& pane(u32 index) { return TarnGUI.widgets[index]; }

    static void press(u16 x, u16 y, u8 button = SDL_BUTTON_LEFT) {
        SDL_Event event{};
        event.button = {SDL_MOUSEBUTTONDOWN, 0, button, SDL_PRESSED, x, y};
        EXPECT_EQ(FilterEvents(&event), 0);
    }
    static void move(s16 x, s16 y) {
        SDL_Event event{};
        event.motion = {SDL_MOUSEMOTION, 0, 0, 0, 0, x, y};
        EXPECT_EQ(FilterEvents(&event), 0);
    }
    static int send(u8 type, SDLKey key = SDLK_UNKNOWN) {
        SDL_Event event{};
        event.type = type;
        event.key.keysym.sym = key;
        return FilterEvents(&event);
    }
};

TEST_F(Filter, WhatIsLeftInTheQueue) {
    Settings.debug_op = 2;
    EXPECT_EQ(send(SDL_KEYDOWN, SDLK_F3), 0);
    EXPECT_EQ(Settings.debug_op, 0) << "whatever is not 0 was on";
    for (const u8 type : {SDL_KEYUP, SDL_ACTIVEEVENT, SDL_VIDEOEXPOSE, SDL_USEREVENT}) {
        EXPECT_EQ(send(type, SDLK_F1), 1) << "queued";
    }
    EXPECT_EQ(MipsCpu.pause, 0);
}

TEST_F(Filter, ClosingTheWindowTakesTwoRequests) {
    TarnGUI.IdleProc = nullptr;
    for (const auto ending : {false, true}) {
        EXPECT_EQ(outputOf([] { EXPECT_EQ(send(SDL_QUIT), 0); }), "Quit event filtered out -- try again.\n");
        EXPECT_EQ(TarnGUI.IdleProc == koGUI_TarnEndingProc, ending);
    }
}

TEST_F(Filter, DraggingTakesTheTopmostPane) {
    move(5, 5);
    press(30, 15);
    const std::tuple<s16, s16, s32, s32> moves[] = {
        {7, -3, 27, 2}, {-27, -500, 0, 0}, {32767, 32767, 32767, 32767}};
    for (const auto& [right, down, x, y] : moves) {
        move(right, down);
        EXPECT_TRUE(pane(1).x == x && pane(1).y == y && pane(1).dirty == 1) << right;
    }
    EXPECT_TRUE(pane(0).x == 0 && pane(0).dirty == 0);
    for (int i = 0; i < 66000; ++i) {
        move(32767, 0);
    }
    EXPECT_EQ(send(SDL_MOUSEBUTTONUP), 0);
    move(-1, -1);
    EXPECT_EQ(pane(1).x, INT32_MAX);
}

TEST_F(Filter, AnotherButtonDuringADragLetsGo) {
    press(310, 15);
    press(700, 590, SDL_BUTTON_RIGHT);
    move(9, 9);
    EXPECT_EQ(pane(2).x, 300);
    press(310, 15, SDL_BUTTON_WHEELUP);
    move(9, 9);
    EXPECT_EQ(pane(2).x, 309);
}

TEST_F(Filter, ShadingTogglesEveryPaneUnderThePointer) {
    place(0, 20, 5);
    for (const u32 height : {22U, 170U, 22U}) {
        press(115, 15);
        EXPECT_TRUE(pane(0).h == height && pane(1).h == height && pane(2).h == 170);
        EXPECT_TRUE(pane(0).dirty == 0 && EventFilter.DragAndDrop == 0) << "shows at the next redraw";
    }
}

}  // namespace
}  // namespace tarn::test
