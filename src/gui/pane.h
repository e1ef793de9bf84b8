// Panes: framed rectangles with a title bar that show an image or lines of text.
#pragma once

#include "base/types.h"
#include "gui/text_lines.h"

#include <SDL.h>
#include <memory>

namespace tarn {

struct koGUIscreen;
struct koGUIwidget;

/// What a pane shows; any other kind is a plain pane.
enum class PaneKind : u8 { Plain = 0, Image = 1, Text = 2 };

enum class PaneState : u8 { Open = 1, Shaded = 2 };

/// What a click hits.
enum class PaneHit : int { Nothing = 0, TitleBar = 1, ShadeZone = 2 };

inline constexpr u32 titleBarHeight = 22;  ///< the whole height of a shaded pane
inline constexpr u32 textLineHeight = 11;  ///< what maxLines counts with

/// Where a pane stands, and whether its body shows.
struct PanePlace {
    s32 x = 0;
    s32 y = 0;
    u32 w = 0;
    u32 h = 0;
    PaneState state{};

    bool operator==(const PanePlace&) const = default;
};

/// One pane. Copies of a record share its lines.
struct koGUIwidget {
    u32 id = 0;  ///< index in the screen's table
    PaneKind kind{};
    s32 x = 0;  ///< top-left corner of the frame
    s32 y = 0;
    u32 w = 0;  ///< of the frame, title bar included
    u32 h = 0;
    u32 savedH = 0;  ///< height to restore when a shaded pane is opened
    PaneState state{};
    u8 dirty = 0;  ///< 1: the screen must be redrawn
    char title[56] = {};

    void (*external_draw)(koGUIwidget*, koGUIscreen*) = nullptr;  ///< frame, title bar, title, shade box
    void (*internal_draw)(koGUIwidget*, koGUIscreen*) = nullptr;  ///< body
    PaneHit (*isClick_TitleBar)(koGUIwidget*, koGUIscreen*, s32, s32) = nullptr;

    // Image panes.
    SDL_Surface* image = nullptr;  ///< not owned
    void (*attachImage)(koGUIwidget*, SDL_Surface*) = nullptr;

    // Text panes.
    koGUItextLine* textLines = nullptr;  ///< head of the list that `lines` owns
    koGUItextLine* (*addText)(koGUIwidget*, const char*) = nullptr;
    u32 maxLines = 0;   ///< lines that the pane has room for
    u32 firstLine = 0;  ///< index of the first line shown

    PanePlace drawnPlace;  ///< at the last redraw
    std::shared_ptr<TextLines> lines;
};

void koGUIwidget_init(koGUIwidget* pane, PaneKind kind, s32 x, s32 y, u32 w, u32 h, const char* title);
void koGUIwidget_attachImage(koGUIwidget* pane, SDL_Surface* image);
void koGUIwidget_external_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_image_internal_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_text_internal_draw(koGUIwidget* pane, koGUIscreen* screen);
void koGUIwidget_default_internal_draw(koGUIwidget* pane, koGUIscreen* screen);

/// What (mx, my) hits.
PaneHit koGUIwidget_isClick_TitleBar(koGUIwidget* pane, koGUIscreen* screen, s32 mx, s32 my);

/// Appends a copy of one line and scrolls to the newest; returns the list's sentinel, or null when the pane
/// has no list.
koGUItextLine* koGUIwidget_addText(koGUIwidget* pane, const char* text);

/// The part of a pane below the title bar, cut to SDL's 16-bit fields.
SDL_Rect bodyRectangle(const koGUIwidget* pane);

}  // namespace tarn
