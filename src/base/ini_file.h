// Reading the configuration file, guarding against input that crashes the INI library.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct _dictionary_;

namespace tarn {

/// A parsed INI file. Keys are "Section:Key" and not case-sensitive.
class IniFile {
  public:
    /// Parses the file at `path`. Converts to false if it cannot be opened or parsed.
    explicit IniFile(const char* path);

    /// An empty file.
    IniFile();

    explicit operator bool() const { return dictionary != nullptr; }

    /// Sets the value of a key. Does nothing if the file could not be parsed.
    void set(const char* key, const char* value);

    /// The value of a key as text, empty if it is absent.
    std::string text(const char* key) const;

    /// The value of a key by strtol's rules (decimal, 0x hexadecimal, 0 octal; no digits: 0), truncated to 32
    /// bits; `fallback` if the key is absent.
    int number(const char* key, int fallback) const;

    /// A line of the file: a key "section:key" with its value, or the header of a section.
    struct Entry {
        std::string name;  ///< lower case
        std::optional<std::string> value;
    };

    /// All entries of the file, in order. A repeated one is at its first place with its last value.
    std::vector<Entry> entries() const;

  private:
    struct Freer {
        void operator()(_dictionary_* dictionary) const;
    };
    std::unique_ptr<_dictionary_, Freer> dictionary;
};

}  // namespace tarn
