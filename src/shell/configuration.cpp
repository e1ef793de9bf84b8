// The reading of ./tarn.ini into the settings.
#include "base/ini_file.h"
#include "machine/settings.h"
#include "shell/configuration_check.h"
#include "shell/driver.h"

#include <algorithm>
#include <cstdio>

namespace tarn {

int TarnLoadConfig() {
    const IniFile file(configurationPath);
    if (!file) {
        std::fprintf(stderr, "cannot parse file [%s]", configurationPath);
        return -1;
    }
    warnAboutConfiguration(file);
    const auto flag = [&](const char* key) { return static_cast<u8>(file.number(key, 0)); };
    const auto size = [&](const char* key, int fallback) {
        return static_cast<u16>(file.number(key, fallback));
    };
    const auto count = [&](const char* key) { return static_cast<u32>(std::max(file.number(key, 0), 0)); };

    std::snprintf(Settings.ElfToExecute, sizeof Settings.ElfToExecute, "%s",
                  file.text("General:Elf").c_str());
    Settings.debug_op = flag("General:Debug_op");
    Settings.debug_dma = flag("General:Debug_dma");
    Settings.debug_print_syscall = flag("General:Debug_syscall");
    Settings.debug_gs = flag("General:Debug_GS");
    Settings.koGUI_MainScreenW = size("Video:Width", 320);
    Settings.koGUI_MainScreenH = size("Video:Height", 240);
    Settings.koGUI_MainScreenBPP = size("Video:Bpp", 32);
    Settings.koGUI_MainScreenStretch = size("Video:Stretch", 1);
    Settings.stepsPerPoll = count("General:Steps_per_poll");
    Settings.console = flag("General:Console");
    Settings.frameRate = count("Video:Frame_rate");
    Settings.completeCpu = flag("General:Complete_cpu");
    Settings.blend = flag("Video:Blend");
    return 1;
}

}  // namespace tarn
