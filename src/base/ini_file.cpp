// Owns the hardened reading of the configuration file.
#include "base/ini_file.h"

#include <cstdlib>
#include <iniparser.h>

namespace tarn {

IniFile::IniFile(const char* path) : dictionary(iniparser_load(path)) {}

IniFile::~IniFile() {
    if (dictionary != nullptr) {
        iniparser_freedict(dictionary);
    }
}

std::string IniFile::text(const char* key) const {
    const char* value = iniparser_getstring(dictionary, key, nullptr);
    return value != nullptr ? value : "";
}

int IniFile::number(const char* key, int fallback) const {
    // The library's own conversion crashes on a section named like the key; its string look-up does not.
    const char* value = iniparser_getstring(dictionary, key, nullptr);
    return value != nullptr ? static_cast<int>(std::strtol(value, nullptr, 0)) : fallback;
}

}  // namespace tarn
