// The positions of the panes, and the size of the window.
#pragma once

#include "gui/pane.h"

#include <array>

namespace tarn {

struct PaneFrame {
    s32 x = 0;
    s32 y = 0;
    u32 w = 0;
    u32 h = 0;
};

struct WindowLayout {
    u32 width = 0;
    u32 height = 0;
    std::array<PaneFrame, 4> panes;  ///< by their index in the screen
};

/// The window of fixed size, in which panes may cover each other, for a picture of that size.
WindowLayout fixedLayout(u32 pictureWidth, u32 pictureHeight);

/// The smallest window in which no pane covers another and all have room for what they show. On a screen that
/// is too small for it the picture's pane is smaller than the picture.
WindowLayout fittedLayout(u32 pictureWidth, u32 pictureHeight, u32 screenWidth, u32 screenHeight);

}  // namespace tarn
