// The window's caption.
#include "shell/caption.h"

#include "machine/machine.h"
#include "machine/settings.h"
#include "shell/driver.h"
#include "shell/pause_message.h"
#include "shell/session.h"
#include "symbols/pause_report.h"

#include <cstdio>
#include <string_view>

namespace tarn {
namespace {

using namespace std::chrono_literals;

constexpr auto interval = 250ms;  ///< between two captions, and between two measurements of the speed

std::string_view programFile() {
    const std::string_view path = Settings.ElfToExecute;
    return path.substr(path.rfind('/') + 1);
}

std::string pace() {
    return shownRate() != 0 ? "paced to " + std::to_string(shownRate()) + " frames/s" : "as fast as possible";
}

std::string whyItStands() {
    if (!machineRests()) {
        return "stopped by the debugger";
    }
    if (Driver.run.pausedByKey) {
        return "paused";
    }
    const std::string cause = symbols::pauseCause();
    return pausePlace() + (cause.empty() ? "" : ": " + cause);
}

}  // namespace

void Caption::update() {
    const Clock::time_point now = Clock::now();
    const bool stands = machineStands();
    const u64 step = machine.counters.driverSteps;
    if (now < due && !(stands && step != shownStep)) {
        return;
    }
    if (now - measured >= interval) {
        const std::chrono::duration<double> time = now - measured;
        speed = verticalBlanks >= blanks ? static_cast<double>(verticalBlanks - blanks) / time.count() : 0;
        measured = now;
        blanks = verticalBlanks;
    }
    due = now + interval;
    shownStep = step;
    char rate[32];
    std::snprintf(rate, sizeof rate, "running at %.0f frames/s", speed);
    std::string text = std::string(programName) + " - " + std::string(programFile()) + ", step " +
                       std::to_string(step) + ", " + pace() + ": " + (stands ? whyItStands() : rate);
    if (text != shown) {
        shown = std::move(text);
        SDL_WM_SetCaption(shown.c_str(), nullptr);
    }
}

}  // namespace tarn
