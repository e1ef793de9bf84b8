// What both programs set up around the machine.
#include "shell/session.h"

#include "gs/display.h"
#include "gui/pane_sinks.h"
#include "machine/settings.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tarn {
namespace {

volatile std::sig_atomic_t stopSignals = 0;

void noteStopSignal(int) { stopSignals = 1; }

/// SDL makes a surface of more bits, but with pixels larger than it can draw.
bool checkDepth(u32 bitsPerPixel) {
    if (bitsPerPixel > 32) {
        SDL_SetError("No pixels of %u bits", bitsPerPixel);
        return false;
    }
    return true;
}

}  // namespace

void createMainScreen() {
    const u32 depth = Settings.koGUI_MainScreenBPP;
    // The same masks whatever the depth: the display output knows how the pixels of each depth are stored.
    MainScreen = checkDepth(depth) ? SDL_CreateRGBSurface(SDL_HWSURFACE, Settings.koGUI_MainScreenW,
                                                          Settings.koGUI_MainScreenH, static_cast<int>(depth),
                                                          0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000)
                                   : nullptr;
    if (MainScreen == nullptr) {
        std::printf("CreateRGBSurface failed: %s\n", SDL_GetError());
        return;
    }
    // The picture is opaque: without this SDL blends it, by an alpha that depths below 32 do not even have.
    SDL_SetAlpha(MainScreen, 0, SDL_ALPHA_OPAQUE);
}

void freeMainScreen() {
    SDL_FreeSurface(MainScreen);
    MainScreen = nullptr;
}

void addPanes(AddTextOperation addText) {
    connectPanes();
    TarnGUI.PictureIsNew = takeNewPicture;
    TarnGUI.PrepareImages = presentPicture;
    const u32 width = Settings.koGUI_MainScreenW;
    const u32 height = Settings.koGUI_MainScreenH;
    const s32 below = static_cast<s32>(height) + 42;

    koGUIwidget pane;
    koGUIwidget_init(&pane, PaneKind::Image, 10, 10, width + 2, height + 22, "VideoOutput");
    pane.attachImage(&pane, MainScreen);
    koGUI_AddWidget(&TarnGUI, &pane);

    const auto addTextPane = [&](s32 x, s32 y, u32 w, u32 h, const char* title) {
        koGUIwidget_init(&pane, PaneKind::Text, x, y, w, h, title);
        pane.addText = addText;
        koGUI_AddWidget(&TarnGUI, &pane);
    };
    addTextPane(10, below, 500, 170, "EmuOutput");
    addTextPane(520, below, 250, 170, "Opcodes");
    addTextPane(520, 10, 180, 400, "CpuRegisters");
}

void prepareProcess() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // Takes the lowest free number, which is this one; writing to it still fails.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDONLY);
        }
    }
    // Redirected, standard output would lose what it holds back when the process is killed.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // A reader that has gone and a file that may not grow are failures of the write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = noteStopSignal;
    action.sa_flags = SA_RESTART;  // or standard output would lose what it was writing
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool stopRequested() { return stopSignals != 0; }

}  // namespace tarn
