// Text panes: appending, wrapping, scrolling to the newest line, drawing.
#include "base/diagnostics.h"
#include "gui/screen.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tarn {

namespace {

/// How many characters of a text fit in a line of that width, broken at a space if possible.
std::size_t lengthOfLine(const BitmapFont* font, std::string_view text, s32 width) {
    std::size_t length = 0;
    while (length < text.size() && (width -= CharWidth(font, text[length])) >= 0) {
        ++length;
    }
    const std::size_t space = length < text.size() ? text.rfind(' ', length) : std::string_view::npos;
    return space != std::string_view::npos && space != 0 ? space : std::max<std::size_t>(length, 1);
}

}  // namespace

koGUItextLine* koGUIwidget_addText(koGUIwidget* pane, const char* text) {
    if (pane->lines == nullptr) {
        return nullptr;
    }
    pane->lines->append(text);
    if (pane->keptLines != 0) {
        pane->lines->keepLast(pane->keptLines);
        pane->textLines = pane->lines->head();
    }
    const u32 count = static_cast<u32>(pane->lines->count());
    pane->firstLine = count >= pane->maxLines ? count - pane->maxLines : 0;
    pane->dirty = 1;
    paneChanged = true;
    return pane->lines->sentinel();
}

koGUItextLine* koGUIwidget_addWrappedText(koGUIwidget* pane, const char* text) {
    const BitmapFont* font = TarnGUI.font2.get();
    std::string_view rest = text;
    std::string line;
    koGUItextLine* end = nullptr;
    do {
        s32 width = static_cast<s32>(pane->w) - 2 * textMargin;
        if (end != nullptr) {
            rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size() - 1));
            line = "  ";
            width -= 2 * CharWidth(font, ' ');
        }
        const std::size_t length = rest.empty() ? 0 : lengthOfLine(font, rest, width);
        line += rest.substr(0, length);
        rest.remove_prefix(length);
        end = koGUIwidget_addText(pane, line.c_str());
    } while (!rest.empty() && end != nullptr);
    return end;
}

void koGUIwidget_replaceText(koGUIwidget* pane, std::span<const std::string> lines) {
    if (pane->lines == nullptr) {
        return;
    }
    pane->lines->keepLast(0);
    pane->textLines = pane->lines->head();
    for (const std::string& line : lines) {
        koGUIwidget_addText(pane, line.c_str());
    }
}

void koGUIwidget_text_internal_draw(koGUIwidget* pane, koGUIscreen* screen) {
    fillRectangle(screen, bodyRectangle(pane), SDL_Color{0, 0, 0, 0});
    if (pane->lines == nullptr) {
        return;
    }
    const koGUItextLine* line = pane->lines->at(pane->firstLine);
    const s32 x = static_cast<s32>(static_cast<u32>(pane->x) + u32{textMargin});
    u32 y = static_cast<u32>(pane->y) + titleBarHeight;
    for (u32 drawn = 0; drawn < pane->maxLines && line->next != nullptr; ++drawn) {
        PrintStringFont(screen->surface.get(), screen->font2.get(), x, static_cast<s32>(y), "%s",
                        line->text.get());
        y += static_cast<u32>(FontHeight(screen->font2.get()));
        line = line->next;
    }
}

}  // namespace tarn
