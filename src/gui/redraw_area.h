// The part of the screen to redraw after panes have changed.
#pragma once

#include "gui/screen.h"

#include <optional>

namespace tarn {

/// Whether a pane has moved or been shaded since it was drawn.
bool hasMoved(const koGUIwidget& pane);

/// Notes the place of a pane. Called just before it is drawn.
void noteDrawn(const koGUIscreen* screen, koGUIwidget* pane);

/// A rectangle that contains all changes of a complete redraw, and all panes that draw in it. Nothing if that
/// may be the whole screen.
std::optional<PixelArea> areaToRedraw(const koGUIscreen* screen);

/// Whether a complete redraw would only change the picture of pane 0: no other pane is dirty, has been moved
/// or shaded, or overlaps the picture.
bool onlyPictureChanges(const koGUIscreen* screen, const PixelArea& picture);

}  // namespace tarn
