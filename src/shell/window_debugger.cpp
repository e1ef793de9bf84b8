// The debugger connection of the window. Until a debugger attaches, the history is a single checkpoint, of
// the start.
#include "shell/window_debugger.h"

#include "base/diagnostics.h"
#include "gdb/server.h"
#include "history/timeline.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "shell/driver.h"
#include "shell/output_files.h"
#include "shell/pause_message.h"
#include "shell/session.h"

#include <optional>
#include <utility>

namespace tarn {
namespace {

/// How long an idle window waits for a packet, in milliseconds.
constexpr int patience = 2;

struct WindowDebugger {
    history::Timeline timeline{history::defaultBudget, picturePixels()};
    gdb::Server server{"tarn", &timeline, programSymbols()};
    u64 shownStep = 0;

    bool holds() const { return server.mode() == gdb::Debugger::Mode::Stopped; }
};

std::optional<WindowDebugger> debugger;

/// Redraws the picture when the machine has been moved to another step: replays are muted and report no
/// pictures.
void showPicture() {
    const u64 step = machine.counters.driverSteps;
    if (step != debugger->shownStep && (debugger->holds() || step < debugger->timeline.furthest())) {
        TarnGUI.widgets[videoOutputPane].dirty = 1;
    }
    debugger->shownStep = step;
}

void advance(u64 steps) {
    // A single step is always traced.
    const bool isSingle = debugger->server.mode() == gdb::Debugger::Mode::Step;
    const u8 formerTrace = std::exchange(Settings.debug_op, isSingle ? u8{1} : Settings.debug_op);
    if (debugger->server.turn({}, steps, patience, stopRequested) == gdb::Server::Finish::Killed) {
        PrintToEmuOutput("killed by the debugger");
        TarnGUI.IdleProc = koGUI_TarnEndingProc;
    }
    Settings.debug_op = formerTrace;
    showPicture();
}

bool seesTo(RunRequest what) {
    if (!debugger->server.isAttached()) {
        if (what != RunRequest::Pause) {
            debugger->server.runOn();
        }
        return false;
    }
    if (what == RunRequest::Pause) {
        debugger->server.interrupt();
    } else {
        PrintToEmuOutput("The debugger controls the machine; F1 stops it.");
    }
    return true;
}

}  // namespace

void startDebugger() {
    debugger.emplace();
    if (!debugger->server.listen(Settings.gdbPort)) {
        PrintfToEmuOutput("Port %u is not free: no debugger can attach", unsigned{Settings.gdbPort});
        debugger.reset();
        return;
    }
    PrintfToEmuOutput("A debugger can attach: target remote :%u", unsigned{Settings.gdbPort});
    debugger->timeline.begin();
    debugger->server.runOn();
    Driver.run.advance = advance;
    Driver.run.seesTo = seesTo;
    Driver.run.holds = [] { return debugger->holds(); };
}

void endDebugger() {
    if (debugger) {
        debugger->server.sayGoodbye();
        Driver.run = {};
        debugger.reset();
    }
}

}  // namespace tarn
