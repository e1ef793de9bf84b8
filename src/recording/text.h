// Text formatting.
#pragma once

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

namespace tarn::recording {

/// A printf-style text, truncated to 500 characters.
[[gnu::format(printf, 1, 2)]] inline std::string format(const char* form, ...) {
    std::array<char, 501> text{};
    std::va_list arguments;
    va_start(arguments, form);
    std::vsnprintf(text.data(), text.size(), form, arguments);
    va_end(arguments);
    return text.data();
}

/// The text as a JSON string that is safe in HTML. Replaces control characters and everything outside ASCII.
inline std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '<') {
            result += "\\u003c";
            continue;
        }
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c >= ' ' && c < 0x7F ? c : '?';
    }
    return result + '"';
}

}  // namespace tarn::recording
