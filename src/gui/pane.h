// Panes: framed rectangles with a title bar that show an image or lines of text.
#pragma once

#include "base/types.h"
#include "gui/text_lines.h"

#include <SDL.h>
#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>

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
inline constexpr u8 textMargin = 3;        ///< left of the text in a pane, of its frame's width

/// The position of a pane, and whether its body is shown.
struct PanePlace {
    s32 x = 0;
    s32 y = 0;
    u32 w = 0;
    u32 h = 0;
    PaneState state{};

    bool operator==(const PanePlace&) const = default;
};

/// A rectangle of the screen; empty at first.
struct PixelArea {
    s64 left = 0;
    s64 top = 0;
    s64 right = 0;  ///< the first column that is outside
    s64 bottom = 0;

    bool isEmpty() const { return right <= left || bottom <= top; }
    bool contains(const PixelArea& other) const {
        return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
    }
    bool overlaps(const PixelArea& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    void extend(const PixelArea& other) {
        if (isEmpty()) {
            *this = other;
        } else if (!other.isEmpty()) {
            *this = {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                     std::max(bottom, other.bottom)};
        }
    }
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
    /// The contents are clipped to the body, and a smaller picture is centred on black.
    bool clipped = false;

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
    u32 keptLines = 0;  ///< older lines are dropped; 0: all are kept

    // At the last redraw.
    PanePlace drawnPlace;
    std::optional<PixelArea> drawnArea;  ///< which text may have made larger than the pane, if it is known
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

/// The same, wrapped to the width of the pane.
koGUItextLine* koGUIwidget_addWrappedText(koGUIwidget* pane, const char* text);

/// Replaces the lines of a text pane.
void koGUIwidget_replaceText(koGUIwidget* pane, std::span<const std::string> lines);

/// The part of a pane below the title bar, cut to SDL's 16-bit fields.
SDL_Rect bodyRectangle(const koGUIwidget* pane);

/// Where an image pane draws its image, which must be there. It may reach beyond the body.
SDL_Rect imageRectangle(const koGUIwidget* pane);

}  // namespace tarn
