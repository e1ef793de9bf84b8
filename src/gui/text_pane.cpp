// Owns the lines of text panes: the list, appending, scrolling to the newest, drawing.
#include "gui/kogui.h"

#include "base/diagnostics.h"

#include <cstdio>
#include <cstring>

namespace tarn {
namespace {

/// Moves the remembered node to index firstLine, or as near as the list reaches. A pane scrolls by one line
/// an append, so this is one step.
void seekFirstLine(koGUIwidget* pane) {
    while (pane->shownIndex < pane->firstLine && pane->shownLine->next != nullptr) {
        pane->shownLine = pane->shownLine->next;
        ++pane->shownIndex;
    }
    while (pane->shownIndex > pane->firstLine) {
        pane->shownLine = pane->shownLine->prev;
        --pane->shownIndex;
    }
}

}  // namespace

void startTextLines(koGUIwidget* pane) {
    pane->textLines = new koGUItextLine;
    pane->sentinel = pane->textLines;
    pane->lineCount = 0;
    pane->shownLine = pane->textLines;
    pane->shownIndex = 0;
}

void freeTextLines(koGUIwidget* pane) {
    for (koGUItextLine* line = pane->textLines; line != nullptr;) {
        koGUItextLine* next = line->next;
        delete[] line->text;
        delete line;
        line = next;
    }
    pane->textLines = nullptr;
    pane->sentinel = nullptr;
    pane->shownLine = nullptr;
}

koGUItextLine* koGUIwidget_addText(koGUIwidget* pane, const char* text) {
    if (pane->sentinel == nullptr) {
        return nullptr;
    }
    for (; pane->sentinel->next != nullptr; ++pane->lineCount) {  // added through a copy of the pane
        pane->sentinel = pane->sentinel->next;
    }
    koGUItextLine* line = pane->sentinel;
    const std::size_t size = std::strlen(text) + 1;
    line->text = new char[size];
    std::memcpy(line->text, text, size);

    const u32 count = ++pane->lineCount;
    pane->firstLine = count >= pane->maxLines ? count - pane->maxLines : 0;
    pane->dirty = 1;
    paneChanged = true;

    pane->sentinel = new koGUItextLine{nullptr, line, nullptr};
    line->next = pane->sentinel;
    seekFirstLine(pane);
    return pane->sentinel;
}

void koGUIwidget_printAllText(const koGUIwidget* pane) {
    for (const koGUItextLine* line = pane->textLines; line != nullptr && line->next != nullptr;
         line = line->next) {
        printDiagnostic("-%s-\n", line->text);
    }
}

void koGUIwidget_text_internal_draw(koGUIwidget* pane, koGUIscreen* screen) {
    fillRectangle(screen, bodyRectangle(pane), SDL_Color{0, 0, 0, 0});
    if (pane->sentinel == nullptr) {
        return;
    }
    seekFirstLine(pane);
    const koGUItextLine* line = pane->shownLine;
    const s32 x = static_cast<s32>(static_cast<u32>(pane->x) + 3);
    u32 y = static_cast<u32>(pane->y) + titleBarHeight;
    for (u32 drawn = 0; drawn < pane->maxLines && line->next != nullptr; ++drawn) {
        PrintStringFont(screen->surface, screen->font2, x, static_cast<s32>(y), "%s", line->text);
        y += static_cast<u32>(FontHeight(screen->font2));
        line = line->next;
    }
}

}  // namespace tarn
