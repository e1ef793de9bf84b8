// A run without a window: where its text goes, when it ends, what it leaves behind.
#include "shell/headless.h"

#include "base/diagnostics.h"
#include "gdb/server.h"
#include "gs/gs.h"
#include "history/report.h"
#include "history/state_file.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "machine/settings.h"
#include "r5900/interpreter.h"
#include "shell/driver.h"
#include "shell/output_files.h"
#include "shell/progress_line.h"
#include "shell/session.h"
#include "symbols/callgrind_file.h"
#include "symbols/elf_symbols.h"
#include "symbols/lcov_file.h"
#include "symbols/pause_report.h"
#include "symbols/profiler.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

namespace tarn {
namespace {

enum class End { stepLimit, frameLimit, signal, paused, killed, startFailed };

OutputFile traceFile;
OutputFile profileFile;
OutputFile coverageFile;
history::Timeline* past = nullptr;  ///< while checkpoints are taken
ProgressLine progress;

/// What the program says of itself, read when it is first asked for.
const symbols::SymbolTable& programSymbols() {
    static const symbols::SymbolTable table = symbols::readSymbols(Settings.ElfToExecute);
    return table;
}

/// The panes keep no text: EmuOutput's goes to standard error, that of the others to the trace. A text that
/// ends its own line is not given a second end.
koGUItextLine* passOnText(koGUIwidget* pane, const char* text) {
    const std::size_t length = std::strlen(text);
    const char* const end = length > 0 && text[length - 1] == '\n' ? "" : "\n";
    progress.clear();
    if (pane->id == emuOutputPane) {
        std::fprintf(stderr, "%s%s", text, end);
    } else {
        traceFile.write(text, length);
        traceFile.write(end, std::strlen(end));
    }
    return nullptr;
}

/// What the guest says is seen as soon as its line is complete.
void passOnGuestText(const char* text) {
    progress.clear();
    std::fputs(text, stdout);
    if (*text == '\n') {
        std::fflush(stdout);
    }
}

/// Runs the start-up machine; true when the interpreter is ready to run.
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

/// Shows how far the run has come; true when a signal ends it.
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
        return End::stepLimit;
    case RunEnd::FrameLimit:
        return End::frameLimit;
    case RunEnd::Interrupted:
        return End::signal;
    default:
        return End::paused;
    }
}

/// Runs the machine as a debugger says; limits and signals end the run all the same.
End runDebugged(gdb::Server& debugger, const RunLimits& limits) {
    using Finish = gdb::Server::Finish;
    switch (debugger.run(limits, stopRequested)) {
    case Finish::Killed:
        return End::killed;
    case Finish::Interrupted:
        return End::signal;
    case Finish::LimitReached:
        return endOf(limitReached(limits));
    default:
        return End::paused;
    }
}

void reportEnd(End end) {
    switch (end) {
    case End::stepLimit:
        std::fprintf(stderr, "tarn-headless: step limit reached");
        break;
    case End::frameLimit:
        std::fprintf(stderr, "tarn-headless: frame limit reached");
        break;
    case End::signal:
        std::fprintf(stderr, "tarn-headless: stopped by a signal");
        break;
    case End::paused:
        std::fprintf(stderr, "tarn-headless: the CPU paused at PC 0x%8.8llx, %sinstruction 0x%8.8x (%s)",
                     MipsCpu.PC, symbols::pausedInstruction() == MipsCpu.PC ? "" : "last ", MipsCpu.opcode,
                     mnemonicOf(MipsCpu.opcode));
        break;
    case End::killed:
        std::fprintf(stderr, "tarn-headless: killed by the debugger");
        break;
    case End::startFailed:
        std::fprintf(stderr, "tarn-headless: start-up failed\n");
        return;
    }
    std::fprintf(stderr, " after %llu steps and %llu vertical blanks\n", machine.counters.driverSteps,
                 machine.counters.verticalBlanks);
    if (end == End::paused) {
        for (const std::string& line : symbols::pauseReport(programSymbols())) {
            std::fprintf(stderr, "tarn-headless: %s\n", line.c_str());
        }
    }
}

int exitStatus(End end, const HeadlessOptions& options) {
    switch (end) {
    case End::paused:
        if (const auto result = options.exitStatus ? symbols::exitResult() : std::nullopt) {
            return *result & 0xFF;
        }
        return 3;
    case End::startFailed:
        return 1;
    default:
        return 0;
    }
}

bool writeVram(const std::string& path) {
    if (Gs.vRam == nullptr) {
        return reportLostOutput(path.c_str(), "there is no GS memory");
    }
    return writeBytes(path, Gs.vRam);
}

bool writeSnapshot(const std::string& prefix) {
    return GSmakeSnapshot(prefix.c_str()) ||
           reportLostOutput((prefix + "snapNNN.bmp").c_str(),
                            Gs.vRam == nullptr ? "there is no GS memory" : std::strerror(errno));
}

/// Opens the files that are written of what is counted, and has it counted.
bool beginCounting(const HeadlessOptions& options) {
    if (options.profile) {
        profileFile.open(*options.profile);
    }
    if (options.coverage) {
        coverageFile.open(*options.coverage);
    }
    if ((options.profile || options.coverage) && !symbols::startCounting(programSymbols())) {
        std::fprintf(stderr, "tarn-headless: there is no memory for the counts\n");
        return false;
    }
    return true;
}

/// Writes them; false when one is lost.
bool writeCounts(const HeadlessOptions& options) {
    const auto counts = symbols::stopCounting();
    if (counts && profileFile.isOpen()) {
        symbols::writeCallgrind(profileFile.stream(), *counts, programSymbols(), Settings.ElfToExecute);
    }
    if (counts && coverageFile.isOpen()) {
        symbols::writeLcov(coverageFile.stream(), *counts, programSymbols());
    }
    const bool profiled = !options.profile || profileFile.close();
    const bool covered = !options.coverage || coverageFile.close();
    return profiled && covered;
}

/// The bytes of the picture.
std::span<u8> picturePixels() {
    if (MainScreen == nullptr || MainScreen->pixels == nullptr) {
        return {};
    }
    const auto bytes = static_cast<std::size_t>(MainScreen->pitch) * static_cast<std::size_t>(MainScreen->h);
    return {static_cast<u8*>(MainScreen->pixels), bytes};
}

/// Goes on from a saved state when one is named; false, with the reason, when it cannot be used.
bool loadState(const HeadlessOptions& options) {
    if (!options.loadState) {
        return true;
    }
    std::vector<u8> bytes;
    std::optional<std::string> complaint = history::readStateFile(options.loadState->c_str(), bytes);
    if (!complaint) {
        complaint =
            history::unpackState(bytes, history::programIdentity(Settings.ElfToExecute), picturePixels());
    }
    if (complaint) {
        std::fprintf(stderr, "tarn-headless: cannot go on from %s: %s\n", options.loadState->c_str(),
                     complaint->c_str());
    }
    return !complaint;
}

/// What the options ask of the steps before the end.
void reportPast(const HeadlessOptions& options, End end) {
    if (past == nullptr || !past->begun() || gifTransferGoesOn()) {
        return;
    }
    if (options.history && end == End::paused) {
        std::fprintf(stderr, "%s", history::describeSteps(*past, *options.history).c_str());
    }
    if (options.lastWrite) {
        const auto& [address, bytes] = *options.lastWrite;
        std::fprintf(stderr, "%s",
                     history::describeLastWrite(*past, address, bytes, programSymbols()).c_str());
    }
}

/// Writes every output that is asked for, each whatever becomes of the others; false when one is lost.
bool writeOutputs(const HeadlessOptions& options) {
    bool complete = true;
    if (options.picture) {
        complete &= writePicture(*options.picture, MainScreen);
    }
    if (options.snapshot) {
        complete &= writeSnapshot(*options.snapshot);
    }
    if (options.vramDump) {
        complete &= writeVram(*options.vramDump);
    }
    if (options.registers) {
        MipsCpuPrintReg();
        MipsCpuFPR1PrintReg();
    }
    if (options.saveState) {
        complete &=
            writeBytes(*options.saveState,
                       history::packState(history::programIdentity(Settings.ElfToExecute), picturePixels()));
    }
    if (options.trace) {
        complete &= traceFile.close();
    }
    if (options.profile || options.coverage) {
        complete &= writeCounts(options);
    }
    return complete;
}

}  // namespace

int runHeadless(const HeadlessOptions& options) {
    // A debugger's user sees where the machine is, and its output must not wait for the line.
    progress.begin(!options.quiet && !options.gdbPort);
    TarnLoadConfig();
    Settings.completeCpu = options.completeCpu ? 1 : Settings.completeCpu;
    if (options.trace) {
        traceFile.open(*options.trace);
        Settings.debug_op = traceFile.isOpen() ? 1 : Settings.debug_op;
    }
    createMainScreen();
    addPanes(passOnText);
    diagnosticSinks.text[static_cast<std::size_t>(Channel::Console)] = passOnGuestText;
    Driver.farewell = 0;

    End end = End::startFailed;
    history::Timeline timeline(history::defaultBudget, picturePixels());
    gdb::Server debugger(&timeline, programSymbols());
    debugger.setPictureWriter([](const std::string& path) { return writePicture(path, MainScreen); });
    if ((!options.gdbPort || debugger.listen(*options.gdbPort)) && start() && loadState(options) &&
        beginCounting(options)) {
        if (options.gdbPort || options.history || options.lastWrite) {
            timeline.begin();
            past = &timeline;
        }
        const RunLimits limits = limitsOf(options);
        end = options.gdbPort ? runDebugged(debugger, limits) : endOf(runUntil(limits, lookAround));
    }
    progress.clear();
    reportEnd(end);
    const int status = exitStatus(end, options);
    const bool complete = writeOutputs(options);
    reportPast(options, end);
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
