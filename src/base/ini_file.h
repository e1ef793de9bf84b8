// Reading the configuration file, hardened against input that crashes the INI library.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct _dictionary_;

namespace tarn {

/// A parsed INI file. Keys are "Section:Key", compared without case.
class IniFile {
  public:
    /// Parses the file at `path`; the result is false-like when it cannot be opened or parsed.
    explicit IniFile(const char* path);

    /// A file without lines.
    IniFile();

    explicit operator bool() const { return dictionary != nullptr; }

    /// Gives a key a value, in place of the one it has. Does nothing to a file that could not be parsed.
    void set(const char* key, const char* value);

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
    struct Freer {
        void operator()(_dictionary_* dictionary) const;
    };
    std::unique_ptr<_dictionary_, Freer> dictionary;
};

}  // namespace tarn
