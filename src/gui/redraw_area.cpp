// Which part of the screen has to be drawn again.
#include "gui/redraw_area.h"

#include "gui/font_extras.h"

#include <array>
#include <limits>

namespace tarn {
namespace {

PanePlace placeOf(const koGUIwidget& pane) { return {pane.x, pane.y, pane.w, pane.h, pane.state}; }

PixelArea areaOfText(const BitmapFont* font, s64 x, s64 y, std::string_view text) {
    return font != nullptr ? PixelArea{x, y, x + TextWidthFont(font, text), y + FontHeight(font)}
                           : PixelArea{};
}

/// The area that a pane draws in, including text beyond its frame. Nothing if it has a drawing function of
/// its own, or if coordinates exceed SDL's 16 bits and wrap.
std::optional<PixelArea> areaOf(const koGUIscreen* screen, const koGUIwidget& pane) {
    const s64 x = pane.x;
    const s64 y = pane.y;
    PixelArea area{x, y, x + pane.w + 1, y + pane.h + 1};
    area.extend(areaOfText(screen->font1.get(), x + 2, y + 2, pane.title));
    bool isKnown = pane.external_draw == koGUIwidget_external_draw && pane.w >= titleBarHeight &&
                   pane.h >= titleBarHeight;
    if (pane.internal_draw == koGUIwidget_image_internal_draw) {
        if (pane.image != nullptr && !pane.clipped) {
            area.extend(
                {x + 1, y + titleBarHeight, x + 1 + pane.image->w, y + titleBarHeight + pane.image->h});
        }
    } else if (pane.internal_draw == koGUIwidget_text_internal_draw) {
        const BitmapFont* font = screen->font2.get();
        for (u32 row = 0; pane.lines != nullptr && !pane.clipped && row < pane.maxLines; ++row) {
            const koGUItextLine* line = pane.lines->at(pane.firstLine + row);
            if (line->next == nullptr) {
                break;
            }
            area.extend(areaOfText(font, x + textMargin, y + titleBarHeight + s64{row} * FontHeight(font),
                                   line->text.get()));
        }
    } else {
        isKnown = isKnown && pane.internal_draw == koGUIwidget_default_internal_draw;
    }
    using Limits = std::numeric_limits<Sint16>;
    isKnown = isKnown && area.left >= Limits::min() && area.top >= Limits::min() &&
              area.right <= Limits::max() && area.bottom <= Limits::max();
    return isKnown ? std::optional(area) : std::nullopt;
}

}  // namespace

bool hasMoved(const koGUIwidget& pane) { return pane.drawnPlace != placeOf(pane); }

void noteDrawn(const koGUIscreen* screen, koGUIwidget* pane) {
    pane->drawnPlace = placeOf(*pane);
    pane->drawnArea = areaOf(screen, *pane);
}

std::optional<PixelArea> areaToRedraw(const koGUIscreen* screen) {
    PixelArea area;
    for (u32 i = 0; i < screen->nbWidgets; ++i) {
        const koGUIwidget& pane = screen->widgets[i];
        const std::optional<PixelArea> now = pane.dirty == 1 ? areaOf(screen, pane) : pane.drawnArea;
        if (hasMoved(pane) || !pane.drawnArea || !now) {
            return std::nullopt;
        }
        if (pane.dirty == 1) {
            area.extend(*pane.drawnArea);
            area.extend(*now);
        }
    }
    for (u32 i = 0; i < screen->nbWidgets;) {
        const PixelArea& pane = *screen->widgets[i].drawnArea;
        const bool grows = pane.overlaps(area) && !area.contains(pane);
        area.extend(grows ? pane : PixelArea{});
        i = grows ? 0 : i + 1;
    }
    return area;
}

bool onlyPictureChanges(const koGUIscreen* screen, const PixelArea& picture) {
    for (u32 i = 0; i < screen->nbWidgets; ++i) {
        const koGUIwidget& pane = screen->widgets[i];
        const bool isPicture = i == videoOutputPane;
        if (hasMoved(pane) || !pane.drawnArea || (pane.dirty == 1) != isPicture ||
            (!isPicture && pane.drawnArea->overlaps(picture))) {
            return false;
        }
    }
    return true;
}

}  // namespace tarn
