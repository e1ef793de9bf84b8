// The toolkit's screen: its surface and fonts, the table of panes, the main loop.
#include "gui/screen.h"

#include "base/diagnostics.h"
#include "gui/blits.h"
#include "gui/redraw_area.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace tarn {
namespace {

constexpr SDL_Color backgroundColour{0, 105, 153, 0};

/// The interval at which input is handled and pictures are shown when nothing else is to be drawn.
constexpr std::chrono::milliseconds quickInterval{1};

FontPtr loadFontOrExit(const char* path, const char* complaint) {
    FontPtr font = LoadFont(path);
    if (font == nullptr) {
        printDiagnostic("%s", complaint);
        std::exit(1);
    }
    return font;
}

bool anyPaneDirty(const koGUIscreen* screen) {
    for (u32 i = 0; i < screen->nbWidgets; ++i) {
        if (screen->widgets[i].dirty == 1) {
            return true;
        }
    }
    return false;
}

/// Shows a part of the window. With SDL_ASYNCBLIT the display server reads the pixels later, and may show
/// newer ones; every now and then the call waits for the server, so that the program does not get far ahead
/// of it.
void update(SDL_Surface* video, const SDL_Rect& place) {
    constexpr u32 updatesAhead = 32;
    static u32 updates = 0;
    if (place.w == 0 || place.h == 0) {
        return;
    }
    SDL_UpdateRect(video, place.x, place.y, place.w, place.h);
    if ((video->flags & SDL_ASYNCBLIT) != 0 && ++updates % updatesAhead == 0 && SDL_LockSurface(video) == 0) {
        SDL_UnlockSurface(video);
    }
}

/// The part of an area that is on the surface.
SDL_Rect rectangleOf(const PixelArea& area, const SDL_Surface* surface) {
    const auto cut = [](s64 value, int size) { return std::clamp<s64>(value, 0, size); };
    const s64 left = cut(area.left, surface->w);
    const s64 top = cut(area.top, surface->h);
    return {static_cast<Sint16>(left), static_cast<Sint16>(top),
            static_cast<Uint16>(cut(area.right, surface->w) - left),
            static_cast<Uint16>(cut(area.bottom, surface->h) - top)};
}

/// Shows a part of the off-screen surface in the window; all of it if the rectangle is null.
void show(koGUIscreen* screen, SDL_Surface* video, const SDL_Rect* rectangle) {
    SDL_Rect place = rectangle != nullptr ? *rectangle : SDL_Rect{};
    blit(screen->surface.get(), rectangle, video, &place);
    if (video != nullptr) {
        update(video, place);
    }
}

void prepareImages(const koGUIscreen* screen) {
    if (screen->PrepareImages != nullptr) {
        screen->PrepareImages();
    }
}

/// Clips drawing to the body of a pane during its lifetime, if that pane is clipped.
class BodyClip {
  public:
    BodyClip(SDL_Surface* surface, const koGUIwidget* pane) : clipped(pane->clipped ? surface : nullptr) {
        if (clipped != nullptr) {
            const SDL_Rect body = bodyRectangle(pane);
            SDL_SetClipRect(clipped, &body);
        }
    }
    ~BodyClip() {
        if (clipped != nullptr) {
            SDL_SetClipRect(clipped, nullptr);
        }
    }
    BodyClip(const BodyClip&) = delete;
    BodyClip& operator=(const BodyClip&) = delete;

  private:
    SDL_Surface* clipped;
};

void drawBody(koGUIscreen* screen, koGUIwidget* pane) {
    const BodyClip clip(screen->surface.get(), pane);
    pane->internal_draw(pane, screen);
}

void draw(koGUIscreen* screen, koGUIwidget* pane) {
    noteDrawn(screen, pane);
    pane->external_draw(pane, screen);
    if (pane->state == PaneState::Open) {
        drawBody(screen, pane);
    }
    pane->dirty = 0;
}

/// Draws every pane, in index order so that later ones lie on top, and shows the result in the window.
void redrawEverything(koGUIscreen* screen, SDL_Surface* video) {
    prepareImages(screen);
    screen->ClearScreen(screen);
    for (u32 i = 0; i < screen->nbWidgets; ++i) {
        draw(screen, &screen->widgets[i]);
    }
    show(screen, video, nullptr);
    screen->shownPicture.clear();
}

/// The same, limited to the area of the panes that have changed.
void redraw(koGUIscreen* screen, SDL_Surface* video) {
    const std::optional<PixelArea> area =
        screen->ClearScreen == koGUI_ClearScreen ? areaToRedraw(screen) : std::nullopt;
    if (!area) {
        redrawEverything(screen, video);
        return;
    }
    prepareImages(screen);
    SDL_Rect rectangle = rectangleOf(*area, screen->surface.get());
    fillRectangle(screen, rectangle, backgroundColour);
    for (u32 i = 0; i < screen->nbWidgets; ++i) {
        if (area->overlaps(*screen->widgets[i].drawnArea)) {
            draw(screen, &screen->widgets[i]);
        }
    }
    show(screen, video, &rectangle);
    screen->shownPicture.clear();
}

/// Copies the changed rows of the picture straight to the window, and sets the rectangle to where they are.
/// Returns false if the pixel formats do not allow it.
bool showChanges(koGUIscreen* screen, SDL_Surface* video, const koGUIwidget* pane, SDL_Rect* place) {
    const BodyClip clip(video, pane);
    return blitChanges(pane->image, video, place, screen->shownPicture);
}

/// Redraws the picture alone, if that is allowed and nothing else has changed; otherwise returns false. A
/// picture that is not due yet stays dirty.
bool redrawPicture(koGUIscreen* screen, SDL_Surface* video, bool due) {
    koGUIwidget* pane = &screen->widgets[videoOutputPane];
    if (screen->quickPicture != 1 || pane->internal_draw != koGUIwidget_image_internal_draw ||
        pane->image == nullptr || pane->state != PaneState::Open) {
        return false;
    }
    SDL_Rect picture = imageRectangle(pane);
    const PixelArea area =
        pane->clipped ? pane->drawnArea.value_or(PixelArea{})
                      : PixelArea{picture.x, picture.y, picture.x + picture.w, picture.y + picture.h};
    if (!onlyPictureChanges(screen, area)) {
        return false;
    }
    if (!due) {
        return true;
    }
    prepareImages(screen);
    if (video != nullptr && showChanges(screen, video, pane, &picture)) {
        update(video, picture);
    } else {
        drawBody(screen, pane);
        show(screen, video, &picture);
    }
    pane->dirty = 0;
    return true;
}

}  // namespace

int koGUI_Init(koGUIscreen* screen) {
    screen->AddWidget = koGUI_AddWidget;
    screen->ClearScreen = koGUI_ClearScreen;
    screen->MainLoop = koGUI_MainLoop;
    screen->Destroy = koGUI_Destroy;
    screen->IdleProc = koGUI_defaultIdleProc;
    screen->nbWidgets = 0;

    const SDL_Surface* video = SDL_GetVideoSurface();
    screen->surface.reset(video != nullptr
                              ? SDL_CreateRGBSurface(SDL_SWSURFACE, video->w, video->h, 32, 0x000000FF,
                                                     0x0000FF00, 0x00FF0000, 0xFF000000)
                              : nullptr);
    if (screen->surface == nullptr) {
        printDiagnostic("CreateRGBSurface failed: %s\n", SDL_GetError());
        return 0;
    }
    // The surface is opaque. Blending its alpha channel into the window would be slow and inexact.
    SDL_SetAlpha(screen->surface.get(), 0, SDL_ALPHA_OPAQUE);
    screen->font1 = loadFontOrExit("data/font_1.bmp", "Couldnt load Font1\n");
    screen->font2 = loadFontOrExit("data/font_2.bmp", "Couldnt load Font2\n");
    AdaptFont(screen->font1.get(), screen->surface.get());
    AdaptFont(screen->font2.get(), screen->surface.get());
    screen->running = 1;
    koGUI_ClearScreen(screen);
    return 1;
}

bool anyPaneMoved(const koGUIscreen* screen) {
    const auto end = screen->widgets.begin() + screen->nbWidgets;
    return std::any_of(screen->widgets.begin(), end, hasMoved);
}

void fillRectangle(koGUIscreen* screen, SDL_Rect rectangle, SDL_Color colour) {
    fill(screen->surface.get(), rectangle, SDL_MapRGB(screen->surface->format, colour.r, colour.g, colour.b));
}

void koGUI_ClearScreen(koGUIscreen* screen) {
    const SDL_Rect everything{0, 0, static_cast<Uint16>(screen->surface->w),
                              static_cast<Uint16>(screen->surface->h)};
    fillRectangle(screen, everything, backgroundColour);
}

void koGUI_AddWidget(koGUIscreen* screen, const koGUIwidget* pane) {
    if (pane == nullptr || screen->nbWidgets >= maxWidgets) {
        return;
    }
    koGUIwidget& entry = screen->widgets[screen->nbWidgets];
    const u32 savedH = entry.savedH;  // the only field that is not copied
    entry = *pane;
    entry.savedH = savedH;
    entry.id = screen->nbWidgets++;
}

void koGUI_MainLoop(koGUIscreen* screen) {
    SDL_Surface* video = SDL_GetVideoSurface();
    using Clock = std::chrono::steady_clock;
    Clock::time_point last{};
    bool exposed = false;  // another window no longer covers this one
    while (screen->running == 1) {
        screen->IdleProc();
        const bool quick = screen->quickPicture == 1;
        const Clock::time_point now = quick ? Clock::now() : last;
        const bool due = !quick || now - last >= quickInterval;
        if (exposed) {
            redrawEverything(screen, video);
        } else if (anyPaneDirty(screen) && !redrawPicture(screen, video, due)) {
            redraw(screen, video);
        }
        exposed = false;
        if (due) {
            last = now;
            SDL_Event event;  // the event filter has already handled it
            exposed = SDL_PollEvent(&event) != 0 && event.type == SDL_VIDEOEXPOSE;
        }
    }
}

void koGUI_Destroy(koGUIscreen* screen) {
    printDiagnostic("Destroy koGUI\n");
    screen->font1 = nullptr;
    screen->font2 = nullptr;
    screen->surface = nullptr;
    for (koGUIwidget& pane : screen->widgets) {
        pane.textLines = nullptr;
        pane.lines = nullptr;
    }
}

void koGUI_defaultIdleProc() {}

}  // namespace tarn
