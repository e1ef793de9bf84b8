// Text panes: appending, scrolling to the newest line, drawing.
#include "base/diagnostics.h"
#include "gui/screen.h"

namespace tarn {

koGUItextLine* koGUIwidget_addText(koGUIwidget* pane, const char* text) {
    if (pane->lines == nullptr) {
        return nullptr;
    }
    pane->lines->append(text);
    const u32 count = static_cast<u32>(pane->lines->count());
    pane->firstLine = count >= pane->maxLines ? count - pane->maxLines : 0;
    pane->dirty = 1;
    paneChanged = true;
    return pane->lines->sentinel();
}

void koGUIwidget_text_internal_draw(koGUIwidget* pane, koGUIscreen* screen) {
    fillRectangle(screen, bodyRectangle(pane), SDL_Color{0, 0, 0, 0});
    if (pane->lines == nullptr) {
        return;
    }
    const koGUItextLine* line = pane->lines->at(pane->firstLine);
    const s32 x = static_cast<s32>(static_cast<u32>(pane->x) + 3);
    u32 y = static_cast<u32>(pane->y) + titleBarHeight;
    for (u32 drawn = 0; drawn < pane->maxLines && line->next != nullptr; ++drawn) {
        PrintStringFont(screen->surface.get(), screen->font2.get(), x, static_cast<s32>(y), "%s",
                        line->text.get());
        y += static_cast<u32>(FontHeight(screen->font2.get()));
        line = line->next;
    }
}

}  // namespace tarn
