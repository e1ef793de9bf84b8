// The renderer's configuration: read from the configuration file, saved per user.
#include "base/configuration.h"
#include "gs/display.h"
#include "machine/settings.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/stat.h>

namespace tarn {

void LoadConfig() {
    forgetPicture();
    GsHost.conf = GsConfig{};
    const IniFile file = loadConfiguration();
    if (!file) {
        std::fprintf(stderr, "cannot parse file [%s]", configurationPath);
        return;
    }
    std::snprintf(Settings.ElfToExecute, sizeof Settings.ElfToExecute, "%s",
                  file.text("General:Elf").c_str());
    GsHost.conf.width = file.number("Video:Width", 320);
    GsHost.conf.height = file.number("Video:Height", 240);
    GsHost.conf.bpp = file.number("Video:Bpp", 32);
    GsHost.conf.stretch = file.number("Video:Stretch", 1);
}

void SaveConfig() {
    static_assert(sizeof(GsConfig) == 28, "the file is the record as it stands");
    const char* home = std::getenv("HOME");
    if (home == nullptr) {
        return;
    }
    const std::string directory = std::string(home) + "/.PS2E";
    mkdir(directory.c_str(), 0755);
    std::FILE* file = std::fopen((directory + "/Gravelx.cfg").c_str(), "w");
    if (file != nullptr) {
        std::fwrite(&GsHost.conf, sizeof GsHost.conf, 1, file);
        std::fclose(file);
    }
}

void OnConf_Ok() {}
void OnConf_Cancel() {}
void OnAbout_Ok() {}

}  // namespace tarn
