// Where the configuration comes from: ./tarn.ini, and what a command line sets.
#pragma once

#include "base/ini_file.h"

#include <string>
#include <vector>

namespace tarn {

inline constexpr const char* configurationPath = "./tarn.ini";

struct ConfigurationSource {
    struct Assignment {
        std::string key;  ///< "Section:Key"
        std::string value;
    };

    bool readsFile = true;                ///< false: what is not assigned has its default
    std::vector<Assignment> assignments;  ///< they come after the file; the last of a key counts
};

inline ConfigurationSource configurationSource;

/// The configuration; false-like when the file is to be read and cannot be.
IniFile loadConfiguration();

}  // namespace tarn
