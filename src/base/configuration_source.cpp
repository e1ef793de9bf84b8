// Combining the configuration file and the command line.
#include "base/configuration_source.h"

namespace tarn {

IniFile loadConfiguration() {
    IniFile file = configurationSource.readsFile ? IniFile(configurationPath) : IniFile();
    for (const auto& [key, value] : configurationSource.assignments) {
        file.set(key.c_str(), value.c_str());
    }
    return file;
}

}  // namespace tarn
