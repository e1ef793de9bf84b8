// The reaction to input: closing, dragging and shading panes, the keys.
#include "shell/event_filter.h"

#include "gui/screen.h"
#include "machine/settings.h"
#include "shell/driver.h"
#include "shell/screenshot.h"

#include <algorithm>
#include <cstdio>

namespace tarn {
namespace {

constexpr int dropped = 0;
constexpr int queued = 1;

void requestClose() {
    std::printf("Quit event filtered out -- try again.\n");
    if (EventFilter.boycott != 0) {
        EventFilter.boycott = 0;
    } else {
        TarnGUI.IdleProc = koGUI_TarnEndingProc;
    }
}

/// A coordinate after a movement: never left of or above the window, unlimited on the other sides.
s32 moved(s32 coordinate, s32 distance) {
    return static_cast<s32>(std::clamp<s64>(s64{coordinate} + distance, 0, INT32_MAX));
}

void drag(const SDL_MouseMotionEvent& motion) {
    // A button pressed elsewhere during a drag leaves no pane to be dragged.
    const bool paneHeld = EventFilter.DragAndDrop == 1 && EventFilter.WidgetID_Click >= 0 &&
                          static_cast<u32>(EventFilter.WidgetID_Click) < TarnGUI.nbWidgets;
    if (paneHeld) {
        koGUIwidget& pane = TarnGUI.widgets[static_cast<u32>(EventFilter.WidgetID_Click)];
        pane.x = moved(pane.x, motion.xrel);
        pane.y = moved(pane.y, motion.yrel);
        pane.dirty = 1;
    }
}

/// Unless panes are laid out side by side, the new height shows at the next redraw only.
void toggleShade(koGUIwidget& pane) {
    if (pane.state == PaneState::Open) {
        pane.savedH = pane.h;
        pane.h = titleBarHeight;
        pane.state = PaneState::Shaded;
    } else {
        pane.h = pane.savedH;
        pane.state = PaneState::Open;
    }
    pane.dirty = Settings.fitWindow == 1 ? 1 : pane.dirty;
}

/// Every pane under the pointer reacts; of overlapping title bars the last pane's is the one dragged.
void press(const SDL_MouseButtonEvent& button) {
    EventFilter.WidgetID_Click = -1;
    for (u32 i = 0; i < TarnGUI.nbWidgets; ++i) {
        koGUIwidget& pane = TarnGUI.widgets[i];
        const PaneHit hit = pane.isClick_TitleBar(&pane, &TarnGUI, button.x, button.y);
        if (hit == PaneHit::TitleBar) {
            EventFilter.DragAndDrop = 1;
            EventFilter.WidgetID_Click = static_cast<s32>(i);
        } else if (hit == PaneHit::ShadeZone) {
            toggleShade(pane);
        }
    }
}

void release() {
    if (EventFilter.DragAndDrop == 1) {
        EventFilter.DragAndDrop = 0;
        EventFilter.WidgetID_Click = -1;
    }
}

void pressExtraKey(SDLKey key) {
    switch (key) {
    case SDLK_F5:
        request(RunRequest::Step);
        break;
    case SDLK_F6:
        request(RunRequest::NextBlank);
        break;
    case SDLK_F7:
        togglePace();
        break;
    case SDLK_F12:
        takeScreenshot();
        break;
    default:
        break;
    }
}

void pressKey(SDLKey key) {
    switch (key) {
    case SDLK_ESCAPE:
        TarnGUI.IdleProc = koGUI_TarnEndingProc;
        break;
    case SDLK_F1:
        request(RunRequest::Pause);
        break;
    case SDLK_F2:
        request(RunRequest::Resume);
        break;
    case SDLK_F3:
        Settings.debug_op = Settings.debug_op == 0 ? 1 : 0;
        break;
    default:
        if (Settings.extraKeys == 1) {
            pressExtraKey(key);
        }
        break;
    }
}

}  // namespace

int FilterEvents(const SDL_Event* event) {
    switch (event->type) {
    case SDL_QUIT:
        requestClose();
        return dropped;
    case SDL_MOUSEMOTION:
        drag(event->motion);
        return dropped;
    case SDL_MOUSEBUTTONDOWN:
        press(event->button);
        return dropped;
    case SDL_MOUSEBUTTONUP:
        release();
        return dropped;
    case SDL_KEYDOWN:
        pressKey(event->key.keysym.sym);
        return dropped;
    default:
        return queued;
    }
}

}  // namespace tarn
