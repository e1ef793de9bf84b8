// The renderer's keys of the configuration file.
#include "base/configuration_source.h"
#include "gs/display.h"
#include "machine/settings.h"

#include <cstdio>

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

}  // namespace tarn
