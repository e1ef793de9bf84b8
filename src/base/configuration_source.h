// The sources of the configuration: ./tarn.ini, and assignments on the command line.
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

    bool readsFile = true;                ///< false: keys that are not assigned have their defaults
    std::vector<Assignment> assignments;  ///< override the file; the last one for a key counts
};

inline ConfigurationSource configurationSource;

/// The configuration. Converts to false if the file cannot be read.
IniFile loadConfiguration();

}  // namespace tarn
