// The toolkit's one screen, TarnGUI: its surface, fonts and panes, and the main loop.
#pragma once

#include "base/types.h"
#include "gui/bitmap_font.h"
#include "gui/pane.h"
#include "gui/surface.h"

#include <array>
#include <vector>

namespace tarn {

inline constexpr u32 maxWidgets = 256;

// The panes of the programs by their index in the screen, which is the order in which they are added.
inline constexpr u32 videoOutputPane = 0;
inline constexpr u32 emuOutputPane = 1;
inline constexpr u32 opcodesPane = 2;
inline constexpr u32 cpuRegistersPane = 3;

/// The screen: everything is drawn into `surface`, which is copied to the window as a whole; but where that
/// is allowed a picture that alone has changed goes straight to the window, a thousand times a second at
/// most, and input is taken as often.
struct koGUIscreen {
    SurfacePtr surface;  ///< as large as the window, 32 bits
    FontPtr font1;       ///< titles
    FontPtr font2;       ///< pane text
    u32 nbWidgets = 0;
    u8 running = 0;  ///< 1 while the main loop is to go on
    std::array<koGUIwidget, maxWidgets> widgets{};

    void (*AddWidget)(koGUIscreen*, const koGUIwidget*) = nullptr;
    void (*ClearScreen)(koGUIscreen*) = nullptr;
    void (*MainLoop)(koGUIscreen*) = nullptr;
    void (*Destroy)(koGUIscreen*) = nullptr;
    void (*IdleProc)() = nullptr;       ///< called once per iteration of the main loop
    bool (*PictureIsNew)() = nullptr;   ///< whether the picture has changed since the last call; null: always
    void (*PrepareImages)() = nullptr;  ///< called before the images of panes are looked at

    u8 quickPicture = 0;           ///< 1: a picture that alone has changed may skip the surface, and wait
    std::vector<u8> shownPicture;  ///< pixels of pane 0's image that did
};

inline koGUIscreen TarnGUI;

/// Makes the off-screen surface and loads the fonts; needs the window. 1, or 0 with a message when there is
/// no surface, in which case the main loop does not run. Exits with status 1 when a font cannot be loaded.
int koGUI_Init(koGUIscreen* screen);
void koGUI_ClearScreen(koGUIscreen* screen);

/// Copies a pane into the screen's table. A pane beyond the 256th is refused.
void koGUI_AddWidget(koGUIscreen* screen, const koGUIwidget* pane);

/// Calls the idle procedure, redraws when a pane is dirty, takes one event; as long as `running` is 1.
void koGUI_MainLoop(koGUIscreen* screen);

/// Frees the fonts, the surface and the text of the panes.
void koGUI_Destroy(koGUIscreen* screen);
void koGUI_defaultIdleProc();

/// Whether a pane has been moved or shaded since it was drawn.
bool anyPaneMoved(const koGUIscreen* screen);

/// Fills a rectangle of the screen with a colour of red, green, blue.
void fillRectangle(koGUIscreen* screen, SDL_Rect rectangle, SDL_Color colour);

}  // namespace tarn
