// Reading the configuration file.
#include "base/ini_file.h"

#include "base/file.h"

#include <cstdlib>
#include <iniparser.h>

namespace tarn {
namespace {

// The library compares every key with every other, so the size of a file bounds the time.
constexpr std::size_t largestFile = 64 * 1024;  // bytes

/// Whether it is safe to pass the file to the library, which would block on a FIFO, read a device forever,
/// and take a directory for an empty file.
bool isLoadable(const char* path) {
    const FilePtr file = openInputFile(path);
    std::vector<char> bytes(largestFile + 1);
    return file != nullptr && std::fread(bytes.data(), 1, bytes.size(), file.get()) <= largestFile;
}

}  // namespace

IniFile::IniFile(const char* path) : dictionary(isLoadable(path) ? iniparser_load(path) : nullptr) {}

IniFile::IniFile() : dictionary(dictionary_new(0)) {}

void IniFile::Freer::operator()(_dictionary_* parsed) const { iniparser_freedict(parsed); }

void IniFile::set(const char* key, const char* value) {
    if (dictionary != nullptr) {
        iniparser_set(dictionary.get(), key, value);
    }
}

std::string IniFile::text(const char* key) const {
    // The library returns null in spite of a default if a section has the whole name of the key.
    const char* value = iniparser_getstring(dictionary.get(), key, nullptr);
    return value != nullptr ? value : "";
}

int IniFile::number(const char* key, int fallback) const {
    // The library's own conversion crashes if a section is named like the key; its string look-up does not.
    const char* value = iniparser_getstring(dictionary.get(), key, nullptr);
    return value != nullptr ? static_cast<int>(std::strtol(value, nullptr, 0)) : fallback;
}

std::vector<IniFile::Entry> IniFile::entries() const {
    std::vector<Entry> result;
    const auto size = static_cast<std::size_t>(dictionary->size);  // its type differs from release to release
    for (std::size_t i = 0; i < size; ++i) {
        if (dictionary->key[i] != nullptr) {
            const char* value = dictionary->val[i];
            result.push_back(
                {dictionary->key[i], value != nullptr ? std::optional<std::string>(value) : std::nullopt});
        }
    }
    return result;
}

}  // namespace tarn
