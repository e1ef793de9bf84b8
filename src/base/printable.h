// Text that comes from files, made fit for a terminal.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tarn {

/// The text with what a terminal would not show as it is replaced.
inline std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(
        result, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }, '?');
    return result;
}

}  // namespace tarn
