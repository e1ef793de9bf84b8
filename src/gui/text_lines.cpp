// Adding to the lines of a text pane and removing the oldest.
#include "gui/text_lines.h"

#include <cstring>

namespace tarn {

void TextLines::append(const char* text) {
    koGUItextLine* line = sentinel();
    const std::size_t size = std::strlen(text) + 1;
    line->text = std::make_unique<char[]>(size);
    std::memcpy(line->text.get(), text, size);
    line->next = &nodes.emplace_back();
    line->next->prev = line;
}

void TextLines::keepLast(std::size_t most) {
    while (count() > most) {
        nodes.pop_front();
        head()->prev = nullptr;
    }
}

}  // namespace tarn
