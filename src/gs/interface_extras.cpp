// Entry points and settings of the renderer that no program here uses.
#include "gs/interface_extras.h"

#include "base/file.h"
#include "gs/display.h"
#include "gs/gif.h"

#include <cstdarg>
#include <cstdlib>
#include <limits>
#include <string>
#include <sys/stat.h>

namespace tarn {
namespace {

/// The number of quadwords from `data` to the end of main memory; no limit for data elsewhere.
u64 quadwordsInMainMemory(const u8* data) {
    const auto begin = reinterpret_cast<std::uintptr_t>(MipsMemory.begin());
    const auto offset = reinterpret_cast<std::uintptr_t>(data) - begin;
    const bool inside = MipsMemory != nullptr && offset <= mainMemorySize;
    return inside ? (mainMemorySize - offset) / quadwordBytes : std::numeric_limits<u64>::max();
}

}  // namespace

u32 PS2EgetLibType() { return 1; }
u32 PS2EgetLibVersion() { return 0x10000; }
const char* PS2EgetLibName() { return "Gravel-sdl Driver"; }

void GSkeyEvent() {}
void GSconfigure() { LoadConfig(); }
void GSabout() {}
s32 GStest() { return 0; }

void GSgifTransfer2(const u8* data) {
    if (Gs.vRam == nullptr) {
        return;
    }
    Gs.gtag.eop = 0;
    GifInput stream{data, quadwordsInMainMemory(data)};
    while (Gs.gifMode != GifMode::Tag || Gs.gtag.eop == 0) {
        if (stream.quadwords == 0) {
            return;
        }
        consumeGif(stream, false);
    }
    Gs.gtag.eop = 0;
}

void SaveConfig() {
    static_assert(sizeof(GsConfig) == 28, "the file is the record as it stands");
    const char* home = std::getenv("HOME");
    if (home == nullptr) {
        return;
    }
    const std::string directory = std::string(home) + "/.PS2E";
    mkdir(directory.c_str(), 0755);
    if (const FilePtr file{std::fopen((directory + "/Gravelx.cfg").c_str(), "w")}) {
        std::fwrite(&GsHost.conf, sizeof GsHost.conf, 1, file.get());
    }
}

void DXclearScr() {
    if (GsHost.conf.fullscreen == 0) {
        fillWithGrey();
    }
}

int DXswitchScrMode() {
    DXclose();
    GsHost.conf.fullscreen = 1 - GsHost.conf.fullscreen;
    return DXopen();
}

void OnConf_Ok() {}
void OnConf_Cancel() {}
void OnAbout_Ok() {}

void __Log(const char* format, ...) {
    if (Log == 0 || gsLog == nullptr) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(gsLog, format, arguments);
    va_end(arguments);
}

}  // namespace tarn
