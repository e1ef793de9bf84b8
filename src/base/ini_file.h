// Reading the configuration file, hardened against input that crashes the INI library.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct _dictionary_;

namespace tarn {

inline constexpr const char* configurationPath = "./tarn.ini";

/// A parsed INI file. Keys are "Section:Key", compared without case.
class IniFile {
  public:
    /// Parses the file at `path`; the result is false-like when it cannot be opened or parsed.
    explicit IniFile(const char* path);
    ~IniFile();
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    explicit operator bool() const { return dictionary != nullptr; }

    /// The key's text, or an empty string when it is absent.
    std::string text(const char* key) const;

    /// The key's value by strtol's rules (decimal, 0x hexadecimal, 0 octal; no digits: 0), cut to 32 bits;
    /// `fallback` when the key is absent.
    int number(const char* key, int fallback) const;

    /// A line of the file: a key "section:key" with its value, or the header of a section, without one.
    struct Entry {
        std::string name;  ///< in small letters
        std::optional<std::string> value;
    };

    /// Everything in the file, in its order; what occurs again is where it stood first, with its last value.
    std::vector<Entry> entries() const;

  private:
    _dictionary_* dictionary = nullptr;
};

}  // namespace tarn
