// The lines of a text pane: a doubly linked list that grows at its end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <memory>

namespace tarn {

/// One line. The list ends in a sentinel whose text is not yet set.
struct koGUItextLine {
    std::unique_ptr<char[]> text;  ///< zero-terminated
    koGUItextLine* prev = nullptr;
    koGUItextLine* next = nullptr;
};

/// Owner of a list's nodes, which stay where they are as it grows.
class TextLines {
  public:
    TextLines() { nodes.emplace_back(); }
    TextLines(const TextLines&) = delete;
    TextLines& operator=(const TextLines&) = delete;

    koGUItextLine* head() { return &nodes.front(); }
    koGUItextLine* sentinel() { return &nodes.back(); }

    /// The number of lines; the sentinel is not one.
    std::size_t count() const { return nodes.size() - 1; }

    /// The line of that index, or the sentinel beyond the last.
    const koGUItextLine* at(std::size_t index) const { return &nodes[std::min(index, count())]; }

    /// Adds a copy of the text at the end.
    void append(const char* text);

    /// Removes lines from the beginning until there are no more than `most`.
    void keepLast(std::size_t most);

  private:
    std::deque<koGUItextLine> nodes;
};

}  // namespace tarn
