// The window application. It reads no arguments; its exit status is 1 whatever happens.
#include "base/diagnostics.h"
#include "machine/settings.h"
#include "r5900/register_names.h"
#include "shell/caption.h"
#include "shell/driver.h"
#include "shell/event_filter.h"
#include "shell/machine_view.h"
#include "shell/output_files.h"
#include "shell/pause_message.h"
#include "shell/session.h"
#include "shell/window_debugger.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace tarn;

[[noreturn]] void failFor(const char* format) {
    std::fprintf(stderr, format, SDL_GetError());
    std::exit(1);
}

WindowLayout layOut() {
    const u32 width = Settings.koGUI_MainScreenW;
    const u32 height = Settings.koGUI_MainScreenH;
    if (Settings.fitWindow != 1) {
        return fixedLayout(width, height);
    }
    const SDL_VideoInfo* info = SDL_GetVideoInfo();
    const auto side = [](int pixels) {
        constexpr int largest = 16383;  // of a surface
        return static_cast<u32>(pixels > 0 ? pixels : largest);
    };
    return fittedLayout(width, height, side(info->current_w), side(info->current_h));
}

void openWindow(const WindowLayout& layout) {
    // With Steps_per_poll the user wants speed: do not wait for the display server after every frame.
    const u32 flags = SDL_HWSURFACE | (Settings.stepsPerPoll > 1 ? SDL_ASYNCBLIT : 0);
    if (SDL_SetVideoMode(static_cast<int>(layout.width), static_cast<int>(layout.height),
                         Settings.koGUI_MainScreenBPP, flags) == nullptr) {
        failFor("Couldn't set video mode: %s\n");
    }
}

/// Sets the optional behaviour of the panes.
void preparePanes() {
    constexpr u32 keptLines = 1000;
    for (u32 i = 0; i < TarnGUI.nbWidgets; ++i) {
        TarnGUI.widgets[i].clipped = Settings.fitWindow == 1;
        TarnGUI.widgets[i].keptLines = Settings.extraKeys == 1 ? keptLines : 0;
    }
    if (Settings.fitWindow == 1) {
        TarnGUI.widgets[emuOutputPane].addText = koGUIwidget_addWrappedText;
        TarnGUI.widgets[cpuRegistersPane].maxLines = static_cast<u32>(debug_r5900_reg.size());
    }
}

void setCaption() {
    char caption[sizeof Settings.ElfToExecute + 32];
    std::snprintf(caption, sizeof caption, " %s %d.%2.2d - %s", programName, versionMajor, versionMinor,
                  Settings.ElfToExecute);
    SDL_WM_SetCaption(caption, nullptr);
}

void reportRest() {
    reportPause("tarn");
    if (Settings.extraKeys == 1) {
        for (const std::string& line : pauseMessage()) {
            PrintToEmuOutput(line.c_str());
        }
    }
}

/// Attaches the optional views of the machine.
void attachTools() {
    static MachineView view;
    static Caption caption;
    Driver.reportRest = reportRest;
    if (Settings.gdbPort != 0) {
        Driver.started = startDebugger;
    }
    if (Settings.extraKeys != 1 && Settings.gdbPort == 0) {
        return;
    }
    diagnosticSinks.trace = &view;
    Driver.look = [] {
        view.update();
        if (Settings.extraKeys == 1) {
            caption.update();
        }
    };
}

/// Repeats the messages about a failure, because the panes disappear with the window.
void reportFailedStart() {
    std::fprintf(stderr, "tarn: start-up failed\n");
    for (const koGUItextLine* line = TarnGUI.widgets[emuOutputPane].textLines;
         line != nullptr && line->next != nullptr; line = line->next) {
        std::fprintf(stderr, "%s\n", line->text.get());
    }
}

}  // namespace

int main(int, char**) {
    prepareProcess();
    commandName = "tarn";
    // Without a display SDL would fall back to text drawn in the terminal, without a mouse.
    setenv("SDL_VIDEODRIVER", "x11", 0);
    if (SDL_Init(SDL_INIT_VIDEO) < 0) {
        failFor("Couldn't initialize SDL: %s\n");
    }
    std::atexit(SDL_Quit);
    const bool configured = TarnLoadConfig() == 1;
    const WindowLayout layout = layOut();
    openWindow(layout);
    SDL_SetEventFilter(FilterEvents);
    createMainScreen();
    koGUI_Init(&TarnGUI);
    TarnGUI.quickPicture = Settings.stepsPerPoll > 1 ? 1 : 0;
    addPanes(layout, koGUIwidget_addText);
    preparePanes();
    setCaption();
    attachTools();
    TarnGUI.IdleProc = koGUI_TarnInitProc;
    TarnGUI.MainLoop(&TarnGUI);
    endDebugger();
    if (TarnGUI.IdleProc == koGUI_TarnInitProc) {
        if (!configured) {
            std::fputc('\n', stderr);  // the message about the file does not end its line
        }
        reportFailedStart();
    }
    TarnGUI.Destroy(&TarnGUI);
    freeMainScreen();
    SDL_Quit();
    return 1;
}
