// The window application. It reads no arguments; its exit status is 1 whatever happens.
#include "machine/settings.h"
#include "shell/driver.h"
#include "shell/event_filter.h"
#include "shell/pause_message.h"
#include "shell/session.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace tarn;

constexpr int windowWidth = 800;
constexpr int windowHeight = 600;

[[noreturn]] void failFor(const char* format) {
    std::fprintf(stderr, format, SDL_GetError());
    std::exit(1);
}

void openWindow() {
    // Whoever asks for speed does not wait for the display server after every frame.
    const u32 flags = SDL_HWSURFACE | (Settings.stepsPerPoll > 1 ? SDL_ASYNCBLIT : 0);
    if (SDL_SetVideoMode(windowWidth, windowHeight, Settings.koGUI_MainScreenBPP, flags) == nullptr) {
        failFor("Couldn't set video mode: %s\n");
    }
}

void setCaption() {
    char caption[sizeof Settings.ElfToExecute + 32];
    std::snprintf(caption, sizeof caption, " %s %d.%2.2d - %s", programName, versionMajor, versionMinor,
                  Settings.ElfToExecute);
    SDL_WM_SetCaption(caption, nullptr);
}

/// The panes disappear with the window, so what they said of a failure is said again.
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
    // Without a display SDL would go on to draw in the terminal, where there is no mouse and little to see.
    setenv("SDL_VIDEODRIVER", "x11", 0);
    if (SDL_Init(SDL_INIT_VIDEO) < 0) {
        failFor("Couldn't initialize SDL: %s\n");
    }
    std::atexit(SDL_Quit);
    const bool configured = TarnLoadConfig() == 1;
    openWindow();
    SDL_SetEventFilter(FilterEvents);
    createMainScreen();
    koGUI_Init(&TarnGUI);
    TarnGUI.quickPicture = Settings.stepsPerPoll > 1 ? 1 : 0;
    addPanes(koGUIwidget_addText);
    setCaption();
    Driver.reportRest = [] { reportPause("tarn"); };
    TarnGUI.IdleProc = koGUI_TarnInitProc;
    TarnGUI.MainLoop(&TarnGUI);
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
