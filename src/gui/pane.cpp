// What all panes share: set-up, frame and title bar, image and plain bodies, the hit test.
#include "gui/pane.h"

#include "gui/blits.h"
#include "gui/line_drawing.h"
#include "gui/screen.h"

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

constexpr SDL_Color frameColour{0, 37, 73, 0};
constexpr SDL_Color titleBarColour{0, 101, 137, 0};
constexpr SDL_Color shadeBoxColour{204, 204, 204, 0};
constexpr SDL_Color plainBodyColour{170, 170, 170, 0};

/// A frame coordinate `distance` from a pane's corner; wraps as 32-bit arithmetic does.
s32 edge(s32 corner, u32 distance) { return static_cast<s32>(static_cast<u32>(corner) + distance); }

SDL_Rect rectangle(s32 x, s32 y, u32 w, u32 h) {
    return {static_cast<Sint16>(x), static_cast<Sint16>(y), static_cast<Uint16>(w), static_cast<Uint16>(h)};
}

}  // namespace

void koGUIwidget_init(koGUIwidget* pane, PaneKind kind, s32 x, s32 y, u32 w, u32 h, const char* title) {
    pane->kind = kind;
    pane->x = x;
    pane->y = y;
    pane->w = w;
    pane->h = h;
    std::fill(std::begin(pane->title), std::end(pane->title), '\0');
    std::memcpy(pane->title, title, std::min(std::strlen(title), sizeof pane->title - 1));
    pane->external_draw = koGUIwidget_external_draw;
    pane->dirty = 1;
    pane->state = PaneState::Open;
    pane->clipped = false;
    pane->keptLines = 0;
    pane->isClick_TitleBar = koGUIwidget_isClick_TitleBar;
    pane->image = nullptr;
    pane->attachImage = nullptr;
    pane->textLines = nullptr;
    pane->lines = nullptr;
    switch (kind) {
    case PaneKind::Image:
        pane->internal_draw = koGUIwidget_image_internal_draw;
        pane->attachImage = koGUIwidget_attachImage;
        break;
    case PaneKind::Text:
        pane->internal_draw = koGUIwidget_text_internal_draw;
        pane->addText = koGUIwidget_addText;
        pane->lines = std::make_shared<TextLines>();
        pane->textLines = pane->lines->head();
        pane->firstLine = 0;
        pane->maxLines = (h - titleBarHeight) / textLineHeight;
        break;
    default:
        pane->internal_draw = koGUIwidget_default_internal_draw;
        break;
    }
}

void koGUIwidget_attachImage(koGUIwidget* pane, SDL_Surface* image) { pane->image = image; }

void koGUIwidget_external_draw(koGUIwidget* pane, koGUIscreen* screen) {
    SDL_Surface* surface = screen->surface.get();
    const u32 colour = SDL_MapRGB(surface->format, frameColour.r, frameColour.g, frameColour.b);
    const auto line = [&](s32 x1, s32 y1, s32 x2, s32 y2) {
        SDL_drawLine_Kq(surface, x1, y1, x2, y2, colour, 0, 0);
    };
    const s32 left = pane->x;
    const s32 top = pane->y;
    const s32 right = edge(left, pane->w);
    const s32 bottom = edge(top, pane->h);
    line(left, top, right, top);
    line(right, top, right, bottom);
    line(left, bottom, right, bottom);
    line(left, top, left, bottom);
    line(left, edge(top, titleBarHeight - 1), edge(left, pane->w - 2), edge(top, titleBarHeight - 1));

    fillRectangle(screen, rectangle(edge(left, 1), edge(top, 1), pane->w - 2, 20), titleBarColour);
    PrintStringFont(surface, screen->font1.get(), edge(left, 2), edge(top, 2), "%s", pane->title);
    fillRectangle(screen, rectangle(edge(left, pane->w - 22), edge(top, 3), 16, 16), shadeBoxColour);
}

SDL_Rect bodyRectangle(const koGUIwidget* pane) {
    return rectangle(edge(pane->x, 1), edge(pane->y, titleBarHeight), pane->w - 2, pane->h - titleBarHeight);
}

SDL_Rect imageRectangle(const koGUIwidget* pane) {
    SDL_Rect place = bodyRectangle(pane);
    if (pane->clipped) {
        place.x = static_cast<Sint16>(place.x + std::max(place.w - pane->image->w, 0) / 2);
        place.y = static_cast<Sint16>(place.y + std::max(place.h - pane->image->h, 0) / 2);
    }
    place.w = static_cast<Uint16>(pane->image->w);
    place.h = static_cast<Uint16>(pane->image->h);
    return place;
}

void koGUIwidget_image_internal_draw(koGUIwidget* pane, koGUIscreen* screen) {
    // SDL's blitters know pixels of 1 to 4 bytes only.
    const bool drawable = pane->image != nullptr && pane->image->format->BytesPerPixel >= 1 &&
                          pane->image->format->BytesPerPixel <= 4;
    if (pane->clipped) {
        fillRectangle(screen, bodyRectangle(pane), SDL_Color{0, 0, 0, 0});
    }
    if (drawable) {
        SDL_Rect place = imageRectangle(pane);
        blit(pane->image, nullptr, screen->surface.get(), &place);
    }
}

void koGUIwidget_default_internal_draw(koGUIwidget* pane, koGUIscreen* screen) {
    fillRectangle(screen, bodyRectangle(pane), plainBodyColour);
}

PaneHit koGUIwidget_isClick_TitleBar(koGUIwidget* pane, koGUIscreen* /*screen*/, s32 mx, s32 my) {
    const u32 right = static_cast<u32>(pane->x) + pane->w;
    const u32 column = static_cast<u32>(mx);
    const bool inBar = pane->x < mx && column < right && pane->y < my && my < s64{pane->y} + titleBarHeight;
    if (!inBar) {
        return PaneHit::Nothing;
    }
    return column <= right - 20 ? PaneHit::TitleBar : PaneHit::ShadeZone;
}

}  // namespace tarn
