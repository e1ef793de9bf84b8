// The progress line of a long run.
#include "shell/progress_line.h"

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr std::chrono::milliseconds period{200};
constexpr int usualColumns = 80;
constexpr const char* eraseLine = "\r\033[K";

/// The number of columns that fit in a line of the terminal.
int usableColumns() {
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return (known ? size.ws_col : usualColumns) - 1;
}

}  // namespace

void ProgressLine::begin(bool wanted) {
    active = wanted && isatty(STDERR_FILENO) == 1;
    lastTime = Clock::now();
    if (active && isatty(STDOUT_FILENO) == 1) {
        // If standard output is on the same terminal, it is buffered until the line is erased.
        static char buffer[1 << 16];
        std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    }
}

void ProgressLine::update(u64 steps, u64 frames) {
    if (!active) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now - lastTime < period) {
        return;
    }
    const double seconds = std::chrono::duration<double>(now - lastTime).count();
    const double rate = static_cast<double>(steps - lastSteps) / seconds;
    lastTime = now;
    lastSteps = steps;

    char text[128];
    std::snprintf(text, sizeof text, "%llu steps, %llu frames, %.2f million steps per second", steps, frames,
                  rate / 1e6);
    clear();
    std::fprintf(stderr, "%.*s", std::max(usableColumns(), 0), text);
    std::fflush(stderr);
    shown = true;
}

void ProgressLine::clear() {
    if (!active) {
        return;
    }
    if (shown) {
        std::fputs(eraseLine, stderr);
        shown = false;
    }
    std::fflush(stdout);
}

}  // namespace tarn
