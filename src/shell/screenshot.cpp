// Screenshots.
#include "shell/screenshot.h"

#include "base/diagnostics.h"
#include "shell/output_files.h"
#include "shell/session.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace tarn {
namespace {

/// The first unused file name, or the last one if all numbers are taken.
std::string freeName() {
    constexpr int numbers = 9999;
    char name[32];
    for (int number = 1; number <= numbers; ++number) {
        std::snprintf(name, sizeof name, "screenshot-%03d.png", number);
        if (access(name, F_OK) != 0) {
            break;
        }
    }
    return name;
}

}  // namespace

void takeScreenshot() {
    const std::string name = freeName();
    const bool written = writePicture(name, MainScreen);
    PrintfToEmuOutput(written ? "Screenshot: %s" : "Cannot write %s", name.c_str());
}

}  // namespace tarn
