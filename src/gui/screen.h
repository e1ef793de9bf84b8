// The toolkit's screen, TarnGUI: its surface, fonts and panes, and the main loop.
#pragma once

#include "base/types.h"
#include "gui/bitmap_font.h"
#include "gui/pane.h"
#include "gui/surface.h"

#include <array>
#include <vector>

namespace tarn {

inline constexpr u32 maxWidgets = 256;

// The panes by their index in the screen, which is the order in which they are added.
inline constexpr u32 videoOutputPane = 0;
inline constexpr u32 emuOutputPane = 1;
inline constexpr u32 opcodesPane = 2;
inline constexpr u32 cpuRegistersPane = 3;

/// The screen. Everything is drawn to `surface`, which is copied to the window. With `quickPicture`, if only
/// the picture has changed it goes directly to the window, at most a thousand times a second; input is
/// handled as often.
struct koGUIscreen {
    SurfacePtr surface;  ///< as large as the window, 32 bits
    FontPtr font1;       ///< titles
    FontPtr font2;       ///< pane text
    u32 nbWidgets = 0;
    u8 running = 0;  ///< 1 while the main loop runs
    std::array<koGUIwidget, maxWidgets> widgets{};

    void (*AddWidget)(koGUIscreen*, const koGUIwidget*) = nullptr;
    void (*ClearScreen)(koGUIscreen*) = nullptr;
    void (*MainLoop)(koGUIscreen*) = nullptr;
    void (*Destroy)(koGUIscreen*) = nullptr;
    void (*IdleProc)() = nullptr;       ///< called once per iteration of the main loop
    bool (*PictureIsNew)() = nullptr;   ///< whether the picture has changed since the last call; null: always
    void (*PrepareImages)() = nullptr;  ///< called before the images of panes are read

    u8 quickPicture = 0;  ///< 1: if only the picture has changed, it may bypass the surface, and be delayed
    std::vector<u8> shownPicture;  ///< pixels of pane 0's image that bypassed it
};

inline koGUIscreen TarnGUI;

/// Creates the off-screen surface and loads the fonts. Needs the window. Returns 1, or 0 after a message if
/// there is no surface, in which case the main loop does not run. Exits with status 1 if a font cannot be
/// loaded.
int koGUI_Init(koGUIscreen* screen);
void koGUI_ClearScreen(koGUIscreen* screen);

/// Copies a pane to the screen's table. A 257th pane is refused.
void koGUI_AddWidget(koGUIscreen* screen, const koGUIwidget* pane);

/// While `running` is 1: calls the idle procedure, redraws if a pane is dirty, handles one event.
void koGUI_MainLoop(koGUIscreen* screen);

/// Frees the fonts, the surface and the text of the panes.
void koGUI_Destroy(koGUIscreen* screen);
void koGUI_defaultIdleProc();

/// Whether a pane has been moved or shaded since it was drawn.
bool anyPaneMoved(const koGUIscreen* screen);

/// Fills a rectangle of the screen with a colour given as red, green and blue.
void fillRectangle(koGUIscreen* screen, SDL_Rect rectangle, SDL_Color colour);

}  // namespace tarn
