// Declares the widget toolkit: one screen, TarnGUI, with framed panes that show an image or lines of text.
#pragma once

#include "base/types.h"
#include "gui/bitmap_font.h"

#include <SDL.h>
#include <array>
#include <vector>

namespace tarn {

struct koGUIscreen;
struct koGUIwidget;

/// What a pane shows; any other kind is a plain pane.
enum PaneKind : u8 { imagePane = 1, textPane = 2 };

/// koGUIwidget::state.
enum PaneState : u8 { paneOpen = 1, paneShaded = 2 };

/// What a click hits, as isClick_TitleBar tells.
enum PaneHit : int { hitNothing = 0, hitTitleBar = 1, hitShadeZone = 2 };

/// The panes by their index in the screen, which is the order in which they are added.
enum PaneIndex : u32 { paneVideoOutput = 0, paneEmuOutput = 1, paneOpcodes = 2, paneCpuRegisters = 3 };

inline constexpr u32 titleBarHeight = 22;  ///< the whole height of a shaded pane
inline constexpr u32 textLineHeight = 11;  ///< what maxLines counts with
inline constexpr u32 maxWidgets = 256;

/// One line of a text pane. The list ends in a sentinel whose text is not yet set.
struct koGUItextLine {
    char* text = nullptr;  ///< owned, zero-terminated
    koGUItextLine* prev = nullptr;
    koGUItextLine* next = nullptr;
};

/// Where a pane stands, and whether its body shows.
struct PanePlace {
    s32 x = 0;
    s32 y = 0;
    u32 w = 0;
    u32 h = 0;
    u8 state = 0;

    bool operator==(const PanePlace&) const = default;
};

/// One pane.
struct koGUIwidget {
    u32 id = 0;  ///< index in the screen's table
    u8 kind = 0;
    s32 x = 0;  ///< top-left corner of the frame
    s32 y = 0;
    u32 w = 0;  ///< of the frame, title bar included
    u32 h = 0;
    u32 savedH = 0;  ///< height to restore when a shaded pane is opened
    u8 state = 0;    ///< a PaneState
    u8 dirty = 0;    ///< 1: the screen must be redrawn
    char title[56] = {};

    void (*external_draw)(koGUIwidget*, koGUIscreen*) = nullptr;  ///< frame, title bar, title, shade box
    void (*internal_draw)(koGUIwidget*, koGUIscreen*) = nullptr;  ///< body
    int (*isClick_TitleBar)(koGUIwidget*, koGUIscreen*, s32, s32) = nullptr;

    // Image panes.
    SDL_Surface* image = nullptr;  ///< not owned
    void (*attachImage)(koGUIwidget*, SDL_Surface*) = nullptr;

    // Text panes.
    koGUItextLine* textLines = nullptr;  ///< head of the list, owned
    koGUItextLine* (*addText)(koGUIwidget*, const char*) = nullptr;
    u32 maxLines = 0;   ///< lines that the pane has room for
    u32 firstLine = 0;  ///< index of the first line shown

    PanePlace drawnPlace;  ///< at the last redraw

    // What makes appending and drawing independent of the length of the list.
    koGUItextLine* sentinel = nullptr;   ///< end of the list
    u32 lineCount = 0;                   ///< lines in the list, the sentinel not counted
    koGUItextLine* shownLine = nullptr;  ///< a node of the list, at or near firstLine
    u32 shownIndex = 0;                  ///< its index
};

/// The screen: everything is drawn into `surface`, which is copied to the window as a whole; but where that
/// is allowed a picture that alone has changed goes straight to the window, a thousand times a second at
/// most, and input is taken as often.
struct koGUIscreen {
    SDL_Surface* surface = nullptr;  ///< owned; as large as the window, 32 bits
    BitmapFont* font1 = nullptr;     ///< owned; titles
    BitmapFont* font2 = nullptr;     ///< owned; pane text
    u32 nbWidgets = 0;
    u8 running = 0;  ///< 1 while the main loop is to go on
    std::array<koGUIwidget, maxWidgets> widgets{};

    void (*AddWidget)(koGUIscreen*, const koGUIwidget*) = nullptr;
    void (*ClearScreen)(koGUIscreen*) = nullptr;
    void (*MainLoop)(koGUIscreen*) = nullptr;
    void (*Destroy)(koGUIscreen*) = nullptr;
    void (*IdleProc)() = nullptr;  ///< called once per iteration of the main loop

    u8 quickPicture = 0;           ///< 1: a picture that alone has changed may skip the surface, and wait
    std::vector<u8> shownPicture;  ///< pixels of pane 0's image that did
};

inline koGUIscreen TarnGUI;

/// Makes the off-screen surface and loads the fonts; needs the window. 1, or 0 with a message when there is
/// no surface, in which case the main loop does not run. Exits with status 1 when a font cannot be loaded.
int koGUI_Init(koGUIscreen* screen);
void koGUI_ClearScreen(koGUIscreen* screen);

/// Copies a pane into the screen's table, which then owns its text. A pane beyond the 256th is refused.
void koGUI_AddWidget(koGUIscreen* screen, const koGUIwidget* pane);

/// Calls the idle procedure, redraws when a pane is dirty, takes one event; as long as `running` is 1.
void koGUI_MainLoop(koGUIscreen* screen);

/// Frees the fonts, the surface and the text of the panes.
void koGUI_Destroy(koGUIscreen* screen);
void koGUI_defaultIdleProc();

void koGUIwidget_init(koGUIwidget* pane, u8 kind, s32 x, s32 y, u32 w, u32 h, const char* title);
void koGUIwidget_attachImage(koGUIwidget* pane, SDL_Surface* image);
void koGUIwidget_external_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_image_internal_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_text_internal_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_default_internal_draw(koGUIwidget* pane, koGUIscreen* screen);

/// What (mx, my) hits: a PaneHit.
int koGUIwidget_isClick_TitleBar(koGUIwidget* pane, koGUIscreen* screen, s32 mx, s32 my);

/// Appends a copy of one line and scrolls to the newest; returns the list's sentinel, or null when the pane
/// has no list.
koGUItextLine* koGUIwidget_addText(koGUIwidget* pane, const char* text);

/// Prints every line to standard output, a debugging aid.
void koGUIwidget_printAllText(const koGUIwidget* pane);

/// Gives a text pane its empty list, and frees a pane's list.
void startTextLines(koGUIwidget* pane);
void freeTextLines(koGUIwidget* pane);

/// The part of a pane below the title bar, cut to SDL's 16-bit fields.
SDL_Rect bodyRectangle(const koGUIwidget* pane);

/// Fills a rectangle of the screen with a colour of red, green, blue.
void fillRectangle(koGUIscreen* screen, SDL_Rect rectangle, SDL_Color colour);

}  // namespace tarn
