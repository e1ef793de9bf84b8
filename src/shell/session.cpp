// What both programs set up around the machine.
#include "shell/session.h"

#include "gs/display.h"
#include "gui/pane_sinks.h"
#include "gui/surface.h"
#include "machine/settings.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tarn {
namespace {

volatile std::sig_atomic_t stopSignals = 0;

void noteStopSignal(int) { stopSignals = 1; }

/// SDL creates surfaces of more than 32 bits, but cannot draw to them.
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
    MainScreen = checkDepth(depth)
                     ? createPicture(SDL_HWSURFACE, Settings.koGUI_MainScreenW, Settings.koGUI_MainScreenH,
                                     static_cast<int>(depth), 0xFF000000)
                     : nullptr;
    if (MainScreen == nullptr) {
        std::printf("CreateRGBSurface failed: %s\n", SDL_GetError());
        return;
    }
    // The picture is opaque. Without this SDL would blend it, even at depths that have no alpha.
    SDL_SetAlpha(MainScreen, 0, SDL_ALPHA_OPAQUE);
}

void freeMainScreen() {
    SDL_FreeSurface(MainScreen);
    MainScreen = nullptr;
}

std::span<u8> picturePixels() {
    forgetPicture();
    if (MainScreen == nullptr || MainScreen->pixels == nullptr) {
        return {};
    }
    const auto bytes = static_cast<std::size_t>(MainScreen->pitch) * static_cast<std::size_t>(MainScreen->h);
    return {static_cast<u8*>(MainScreen->pixels), bytes};
}

void addPanes(const WindowLayout& layout, AddTextOperation addText) {
    connectPanes();
    TarnGUI.PictureIsNew = takeNewPicture;
    TarnGUI.PrepareImages = presentPicture;
    constexpr std::array titles = {"VideoOutput", "EmuOutput", "Opcodes", "CpuRegisters"};
    for (u32 i = 0; i < titles.size(); ++i) {
        const PaneFrame& place = layout.panes[i];
        koGUIwidget pane;
        koGUIwidget_init(&pane, i == videoOutputPane ? PaneKind::Image : PaneKind::Text, place.x, place.y,
                         place.w, place.h, titles[i]);
        if (i == videoOutputPane) {
            pane.attachImage(&pane, MainScreen);
        } else {
            pane.addText = addText;
        }
        koGUI_AddWidget(&TarnGUI, &pane);
    }
}

void prepareProcess() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // Takes the lowest free number, which is this one; writing to it still fails.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDONLY);
        }
    }
    // Buffered by lines even when redirected, so that little is lost when the process is killed.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // A closed pipe and a file size limit make writes fail instead.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = noteStopSignal;
    action.sa_flags = SA_RESTART;  // an interrupted write to standard output would lose data
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool stopRequested() { return stopSignals != 0; }

}  // namespace tarn
