// The event filter, through which all input comes.
#pragma once

#include "base/types.h"

#include <SDL.h>

namespace tarn {

struct EventFilterState {
    s32 boycott = 1;          ///< not 0: the next request to close the window is refused
    s32 DragAndDrop = 0;      ///< 1 while a pane is dragged by its title bar
    s32 WidgetID_Click = -1;  ///< index of that pane, -1 for none
};

inline EventFilterState EventFilter;

/// Handles an event as SDL collects it. Returns 0 to drop it, 1 to have it queued.
int FilterEvents(const SDL_Event* event);

}  // namespace tarn
