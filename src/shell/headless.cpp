// A run without a window: its diagnostics, limits and outputs.
#include "shell/headless.h"

#include "base/configuration_source.h"
#include "base/diagnostics.h"
#include "base/file.h"
#include "gdb/server.h"
#include "loader/program_check.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "machine/settings.h"
#include "shell/driver.h"
#include "shell/headless_history.h"
#include "shell/headless_outputs.h"
#include "shell/pause_message.h"
#include "shell/progress_line.h"
#include "shell/session.h"
#include "symbols/pause_report.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace tarn {
namespace {

enum class End { StepLimit, FrameLimit, Place, Signal, Paused, Killed, StartFailed };

HeadlessHistory* past = nullptr;  ///< during the run
ProgressLine progress;

/// The panes keep no text; that of EmuOutput goes to standard error. A newline is added unless the text ends
/// in one.
koGUItextLine* passOnText(koGUIwidget* pane, const char* text) {
    if (pane->id == emuOutputPane) {
        progress.clear();
        std::fprintf(stderr, "%s%s", text, std::string_view(text).ends_with('\n') ? "" : "\n");
    }
    return nullptr;
}

/// Guest output is flushed after every line.
void passOnGuestText(const char* text) {
    progress.clear();
    printDiagnostic("%s", text);
    if (*text == '\n') {
        std::fflush(stdout);
    }
}

/// Runs the start-up state machine. Returns whether the interpreter is ready to run.
bool start() {
    TarnGUI.running = 1;
    TarnGUI.IdleProc = koGUI_TarnInitProc;
    while (TarnGUI.running == 1 && TarnGUI.IdleProc == koGUI_TarnInitProc) {
        TarnGUI.IdleProc();
    }
    return TarnGUI.running == 1;
}

RunLimits limitsOf(const HeadlessOptions& options) {
    const RunLimits none;
    return {options.steps.value_or(none.steps), options.frames.value_or(none.verticalBlanks)};
}

/// Updates the progress line. Returns whether a signal ends the run.
bool lookAround() {
    progress.update(machine.counters.driverSteps, machine.counters.verticalBlanks);
    if (past != nullptr) {
        past->look();
    }
    return stopRequested();
}

End endOf(RunEnd end) {
    switch (end) {
    case RunEnd::StepLimit:
        return End::StepLimit;
    case RunEnd::FrameLimit:
        return End::FrameLimit;
    case RunEnd::Interrupted:
        return End::Signal;
    default:
        return End::Paused;
    }
}

/// Runs the machine under a debugger. Limits and signals still end the run.
End runDebugged(gdb::Server& debugger, const RunLimits& limits) {
    using Finish = gdb::Server::Finish;
    switch (debugger.run(limits, stopRequested)) {
    case Finish::Killed:
        return End::Killed;
    case Finish::Interrupted:
        return End::Signal;
    case Finish::LimitReached:
        return endOf(limitReached(limits));
    default:
        return End::Paused;
    }
}

void reportEnd(End end) {
    switch (end) {
    case End::StepLimit:
        std::fprintf(stderr, "tarn-headless: step limit reached");
        break;
    case End::FrameLimit:
        std::fprintf(stderr, "tarn-headless: frame limit reached");
        break;
    case End::Place:
        std::fprintf(stderr, "tarn-headless: reached 0x%8.8llx", MipsCpu.PC);
        break;
    case End::Signal:
        std::fprintf(stderr, "tarn-headless: stopped by a signal");
        break;
    case End::Paused:
        reportPause("tarn-headless");
        return;
    case End::Killed:
        std::fprintf(stderr, "tarn-headless: killed by the debugger");
        break;
    case End::StartFailed:
        std::fprintf(stderr, "tarn-headless: start-up failed\n");
        return;
    }
    std::fprintf(stderr, "%s\n", countsSoFar().c_str());
}

/// With `ownResult` it is the program's own status if the program has ended by Exit.
int exitStatus(End end, bool ownResult) {
    switch (end) {
    case End::Paused:
        if (const auto result = symbols::exitResult(); result && ownResult) {
            return *result & 0xFF;
        }
        return 3;
    case End::StartFailed:
        return 1;
    default:
        return 0;
    }
}

/// The address that --until names: a symbol, or a number in C's notation.
std::optional<u32> addressOf(const std::string& name) {
    char* end = nullptr;
    errno = 0;
    const unsigned long long number = std::strtoull(name.c_str(), &end, 0);
    if (end != name.c_str() && *end == '\0' && errno == 0) {
        return symbols::foldAddress(number);
    }
    const std::optional<u32> address = programSymbols().addressOf(name);
    return address ? std::optional(symbols::foldAddress(*address)) : std::nullopt;
}

/// Finds the address of --until, if given. Returns false after a message if there is no such place.
bool findPlace(const HeadlessOptions& options, std::optional<u32>& place) {
    if (options.until && !(place = addressOf(options.until->name))) {
        std::fprintf(stderr, "tarn-headless: '%s' is neither an address nor a symbol of %s\n",
                     options.until->name.c_str(), Settings.ElfToExecute);
        return false;
    }
    return true;
}

/// Driver steps one by one, until a limit or the place is reached.
End runToPlace(const RunLimits& limits, u32 address, u64& count) {
    constexpr u64 stepsPerLook = 1 << 14;
    bool stepIsOver = true;
    for (u64 turn = 0;; ++turn) {
        if (turn % stepsPerLook == 0 && lookAround()) {
            return End::Signal;
        }
        if (machineRests()) {
            return End::Paused;
        }
        if (const RunEnd end = limitReached(limits); end != RunEnd::None) {
            return endOf(end);
        }
        if (stepIsOver && symbols::foldAddress(MipsCpu.PC) == address && --count == 0) {
            return End::Place;
        }
        stepIsOver = runSteps(1) == 1;
    }
}

/// Runs to the end, and writes numbered pictures and switches the trace on the way as requested.
End run(const HeadlessOptions& options, std::optional<u32> place, HeadlessOutputs& outputs) {
    const RunLimits limits = limitsOf(options);
    u64 count = options.until ? options.until->count : 0;
    const u64& blanks = machine.counters.verticalBlanks;
    for (;;) {
        RunLimits part = limits;
        part.steps = std::min(limits.steps, outputs.traceAt(machine.counters.driverSteps));
        if (const u64 every = options.pictureEvery.value_or(0); every != 0) {
            part.verticalBlanks = std::min(limits.verticalBlanks, blanks - blanks % every + every);
        }
        const End end = place ? runToPlace(part, *place, count) : endOf(runUntil(part, lookAround));
        if (end == End::StepLimit && machine.counters.driverSteps < limits.steps) {
            continue;
        }
        if (end != End::FrameLimit) {
            return end;
        }
        if (options.pictureEvery && blanks % *options.pictureEvery == 0) {
            outputs.writeNumberedPicture();
        }
        if (blanks >= limits.verticalBlanks) {
            return end;
        }
    }
}

/// Reads the configuration and checks the program file. Returns false after a message on failure.
bool configure(const HeadlessOptions& options) {
    configurationSource = {.readsFile = !options.program, .assignments = options.assignments};
    if (options.program) {
        const std::string& path = *options.program;
        std::string reason = whyNotProgram(path.c_str());
        if (reason.empty() && path.size() >= sizeof Settings.ElfToExecute) {
            reason = "has too long a path";
        }
        if (!reason.empty()) {
            std::fprintf(stderr, "tarn-headless: %s %s\n", path.c_str(), reason.c_str());
            return false;
        }
        configurationSource.assignments.push_back({"General:Elf", path});
        if (openInputFile(Driver.biosPath) == nullptr) {
            Driver.biosPath = "/dev/null";
        }
    }
    TarnLoadConfig();
    if (!options.program && openInputFile(Settings.ElfToExecute) != nullptr) {
        if (const std::string reason = whyNotProgram(Settings.ElfToExecute); !reason.empty()) {
            std::fprintf(stderr, "tarn-headless: warning: %s %s\n", Settings.ElfToExecute, reason.c_str());
        }
    }
    if (Settings.debug_op == 1 && !options.tracePath()) {
        std::fprintf(stderr,
                     "tarn-headless: warning: Debug_op is 1, which makes the run a hundred times slower, "
                     "but without --trace the trace goes nowhere\n");
    }
    return true;
}

}  // namespace

int runHeadless(const HeadlessOptions& options) {
    // A debugger shows where the machine is, so there is no progress line.
    progress.begin(!options.quiet && !options.gdbPort && options.tracePath() != "-");
    HeadlessOutputs outputs(options, programSymbols);
    std::optional<u32> place;
    std::vector<u8> savedState;
    // The state to start from is read first: it may be the file that the state at the end goes to.
    if (!configure(options) || !findPlace(options, place) ||
        !HeadlessHistory::readState(options, savedState) || !outputs.open()) {
        return exitStatus(End::StartFailed, false);
    }
    Settings.completeCpu = options.completeCpu ? 1 : Settings.completeCpu;
    createMainScreen();
    addPanes(fixedLayout(Settings.koGUI_MainScreenW, Settings.koGUI_MainScreenH), passOnText);
    diagnosticSinks.text[static_cast<std::size_t>(Channel::Console)] = passOnGuestText;
    Driver.farewell = 0;

    End end = End::StartFailed;
    HeadlessHistory history(options, programSymbols);
    std::optional<gdb::Server> debugger;
    if (options.gdbPort) {
        debugger.emplace("tarn-headless", &history.past(), programSymbols());
        debugger->setPictureWriter([](const std::string& path) { return writePicture(path, MainScreen); });
    }
    if ((!debugger || debugger->listen(*options.gdbPort)) && start() && history.begin(savedState) &&
        outputs.beginCounting()) {
        past = &history;
        outputs.beginRecording();
        outputs.traceAt(machine.counters.driverSteps);
        end = debugger ? runDebugged(*debugger, limitsOf(options)) : run(options, place, outputs);
        outputs.endTrace();
    }
    progress.clear();
    reportEnd(end);
    const int status = exitStatus(end, options.exitStatus);
    const bool complete = outputs.write();
    history.report(end == End::Paused);
    past = nullptr;
    while (TarnGUI.running == 1) {
        koGUI_TarnEndingProc();
    }
    freeMainScreen();
    return complete ? status : 1;
}

int finishStandardOutput(int status) {
    const bool failed = std::ferror(stdout) != 0;
    errno = 0;
    if (std::fclose(stdout) != 0 || failed) {
        reportLostOutput("standard output", std::strerror(errno != 0 ? errno : EIO));
        return 1;
    }
    return status;
}

}  // namespace tarn
