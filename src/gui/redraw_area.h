// Which part of the screen has to be drawn again when panes have changed.
#pragma once

#include "gui/screen.h"

#include <optional>

namespace tarn {

/// Whether a pane has moved or been shaded since it was drawn.
bool hasMoved(const koGUIwidget& pane);

/// Notes where a pane stands and draws, just before it is drawn.
void noteDrawn(const koGUIscreen* screen, koGUIwidget* pane);

/// A rectangle outside which drawing everything would change nothing, and which no pane crosses that draws on
/// it: all that draw on it can be drawn whole. Nothing if that may be the whole screen.
std::optional<PixelArea> areaToRedraw(const koGUIscreen* screen);

/// Whether redrawing everything would change nothing but the picture of pane 0: no other pane is dirty, has
/// moved or been shaded since the last time, or draws on the picture.
bool onlyPictureChanges(const koGUIscreen* screen, const PixelArea& picture);

}  // namespace tarn
