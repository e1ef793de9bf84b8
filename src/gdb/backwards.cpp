// The debugger's commands for history: running backwards, and the user's monitor commands.
#include "gdb/debugger.h"
#include "history/report.h"
#include "machine/machine.h"

#include <charconv>

namespace tarn::gdb {
namespace {

constexpr const char* stoppedByTrap = "S05";
constexpr const char* historyBegins = "T05replaylog:begin;";

constexpr const char* monitorHelp =
    "monitor step                          where the machine is: step, vertical blank, symbol\n"
    "monitor goto STEP                     go to a step of the past\n"
    "monitor frame N                       go to the step in which the Nth vertical blank came\n"
    "monitor last-write ADDRESS [BYTES]    who stored there last: a symbol, SYMBOL+0xN, or a hexadecimal\n"
    "                                      address; 4 bytes by default\n"
    "monitor history N                     the last N steps, with what they changed\n"
    "monitor picture FILE                  write the picture, as PNG if the name ends in .png, or as BMP\n"
    "After goto and frame, 'maintenance flush register-cache' has the debugger look again.\n";

/// Removes the first word of a line and returns it.
std::string_view takeWord(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(word.size());
    return word;
}

std::optional<u64> takeNumber(std::string_view& line) {
    const std::string_view word = takeWord(line);
    u64 value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size() ? std::optional(value) : std::nullopt;
}

}  // namespace

/// Goes back from the machine's position to the last breakpoint or watchpoint, and returns the stop reply. A
/// breakpoint stops before its instruction is executed, a watchpoint just after the access: one step further
/// back it is undone.
std::optional<std::string> Debugger::hitBefore() {
    std::string reply;
    const u64& now = machine.counters.driverSteps;
    const u64 origin = now;
    const std::optional<u64> found = timeline->searchBack([&](u64 end) {
        std::optional<u64> last;
        const history::ActiveStops active(points);
        for (;;) {
            history::runTo(end);
            if (now >= end) {
                return last;
            }
            if (points.breaksAt(MipsCpu.PC)) {
                last = now;
                reply = stoppedByTrap;
            }
            if (const std::optional<history::WatchHit> hit = points.nextWatchHit()) {
                last = now + 1;
                reply = watchReply(*hit);
            }
            history::makeStep();
        }
    });
    timeline->goTo(found.value_or(origin));
    return found ? std::optional(reply) : std::nullopt;
}

std::optional<std::string> Debugger::goBack(bool oneStep) {
    if (altered) {
        timeline->begin();
        altered = false;
    }
    const u64 now = machine.counters.driverSteps;
    if (now <= timeline->first()) {
        return stop(historyBegins);
    }
    if (!oneStep) {
        if (!points.empty()) {
            if (const std::optional<std::string> hit = hitBefore()) {
                return stop(*hit);
            }
        }
        timeline->goTo(timeline->first());
        return stop(historyBegins);
    }
    timeline->goTo(now - 1);
    if (const std::optional<history::WatchHit> hit = points.nextWatchHit()) {
        timeline->goTo(now);
        return stop(watchReply(*hit));
    }
    return stop(stoppedByTrap);
}

std::string Debugger::monitorMove(std::string_view name, std::string_view arguments) {
    const std::optional<u64> number = takeNumber(arguments);
    if (!number) {
        return "a number is missing\n";
    }
    const u64 furthest = timeline->furthest();
    if (name == "goto") {
        if (*number < timeline->first() || *number > furthest) {
            return "history goes from step " + std::to_string(timeline->first()) + " to " +
                   std::to_string(furthest) + "\n";
        }
        timeline->goTo(*number);
        return history::describePosition(symbols);
    }
    if (!timeline->goToBlank(*number)) {
        return "history has no such vertical blank\n";
    }
    return history::describePosition(symbols);
}

std::string Debugger::monitor(std::string_view line) {
    const std::string_view name = takeWord(line);
    if (name == "picture") {
        const std::string path(takeWord(line));
        return writePicture != nullptr && !path.empty() && writePicture(path) ? "written: " + path + "\n"
                                                                              : "cannot write the picture\n";
    }
    if (name == "step") {
        return history::describePosition(symbols);
    }
    const bool known = name == "goto" || name == "frame" || name == "last-write" || name == "history";
    if (!known) {
        return monitorHelp;
    }
    if (timeline == nullptr || !timeline->begun()) {
        return "there is no history\n";
    }
    if (altered) {
        timeline->begin();
        altered = false;
    }
    if (name == "last-write") {
        const std::optional<u32> address = history::addressNamed(takeWord(line), symbols);
        const std::optional<u64> bytes = line.empty() ? 4 : takeNumber(line);
        if (!address || !bytes || *bytes == 0 || *bytes > 0x10000) {
            return "an address and 1 to 65536 bytes are wanted\n";
        }
        return history::describeLastWrite(*timeline, *address, static_cast<u32>(*bytes), symbols);
    }
    if (name == "history") {
        const std::optional<u64> count = takeNumber(line);
        constexpr u64 most = 100;  // fits in a packet
        return count ? history::describeSteps(*timeline, std::min(*count, most), symbols)
                     : "a number is missing\n";
    }
    return monitorMove(name, line);
}

}  // namespace tarn::gdb
