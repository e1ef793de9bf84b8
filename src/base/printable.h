// Making text from files safe for a terminal.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tarn {

/// Replaces control characters.
inline std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(
        result, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }, '?');
    return result;
}

}  // namespace tarn
