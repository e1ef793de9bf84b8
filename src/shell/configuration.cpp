// Reading the settings from the configuration.
#include "base/configuration_source.h"
#include "base/file.h"
#include "machine/settings.h"
#include "shell/configuration_check.h"
#include "shell/driver.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace tarn {
namespace {

bool beginsWithByteOrderMark(const char* path) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    char start[mark.size()] = {};
    const FilePtr file = openInputFile(path);
    return file != nullptr && std::fread(start, 1, sizeof start, file.get()) == sizeof start &&
           std::string_view(start, sizeof start) == mark;
}

void warn() {
    if (configurationSource.readsFile) {
        warnAboutConfiguration(IniFile(configurationPath), configurationPath);
    }
    IniFile commandLine;
    for (const auto& [key, value] : configurationSource.assignments) {
        commandLine.set(key.c_str(), value.c_str());
    }
    warnAboutConfiguration(commandLine, "--set");
}

}  // namespace

int TarnLoadConfig() {
    const IniFile file = loadConfiguration();
    if (!file) {
        std::fprintf(stderr, "cannot parse file [%s]", configurationPath);
        if (beginsWithByteOrderMark(configurationPath)) {
            std::fprintf(stderr,
                         "\n%s begins with a UTF-8 byte-order mark, three invisible bytes; save it without\n",
                         configurationPath);
        }
        return -1;
    }
    warn();
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
    Settings.fitWindow = flag("Video:Fit_window");
    Settings.extraKeys = flag("General:Extra_keys");
    const u32 port = count("General:Gdb_port");
    Settings.gdbPort = port <= UINT16_MAX ? static_cast<u16>(port) : u16{0};
    return 1;
}

}  // namespace tarn
