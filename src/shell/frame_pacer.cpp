// Frame pacing. Sleeps for short times, between which the main loop handles input.
#include "shell/frame_pacer.h"

#include <algorithm>
#include <thread>

namespace tarn {
namespace {

constexpr std::chrono::milliseconds longestSleep{2};

}  // namespace

bool FramePacer::holds(u64 blanks, u32 rate) {
    if (rate == 0) {
        return false;
    }
    const Clock::time_point now = Clock::now();
    if (blanks != lastBlank) {
        lastBlank = blanks;
        // A steady rate while the machine keeps up; lost time is not made up for.
        due = std::max(now, due + std::chrono::nanoseconds(std::chrono::seconds(1)) / rate);
    }
    if (now >= due) {
        return false;
    }
    std::this_thread::sleep_for(std::min<Clock::duration>(due - now, longestSleep));
    return true;
}

void FramePacer::rest(u32 rate) const {
    if (rate != 0) {
        std::this_thread::sleep_for(longestSleep);
    }
}

}  // namespace tarn
