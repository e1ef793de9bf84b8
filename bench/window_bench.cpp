// Window benchmarks: appending text and redrawing, on SDL's dummy display.
#include "base/diagnostics.h"
#include "bench_machine.h"
#include "gui/screen.h"
#include "machine/settings.h"
#include "shell/session.h"

#include <SDL.h>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace tarn::bench {

namespace {

/// Opens the window with its four panes, at the first call.
void openWindow() {
    static const bool opened = [] {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        // The fonts are found from the working directory.
        if (chdir(TARN_SOURCE_DIRECTORY) != 0 || SDL_Init(SDL_INIT_VIDEO) != 0 ||
            SDL_SetVideoMode(800, 600, 32, SDL_HWSURFACE) == nullptr) {
            std::fprintf(stderr, "tarn-bench: no window\n");
            std::exit(1);
        }
        Settings.koGUI_MainScreenW = 320;
        Settings.koGUI_MainScreenH = 240;
        Settings.koGUI_MainScreenBPP = 32;
        createMainScreen();
        if (koGUI_Init(&TarnGUI) == 0) {
            std::exit(1);
        }
        addPanes(fixedLayout(Settings.koGUI_MainScreenW, Settings.koGUI_MainScreenH), koGUIwidget_addText);
        return true;
    }();
    static_cast<void>(opened);
}

void append(benchmark::State& state) {
    openWindow();
    for (auto _ : state) {
        PrintToOpcodeOutput("00100000: addiu sp,sp,fff0");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(append)->Name("window/append")->Iterations(200000);

/// One turn of the main loop after `makeDirty` has made panes dirty.
template <void (*makeDirty)()>
void redraw(benchmark::State& state) {
    openWindow();
    for (int i = 0; i < 64; ++i) {
        PrintToEmuOutput(
            "R5900:Allocation Main Memory 32 Mbits...OK, and some more text to fill the line with");
        PrintToOpcodeOutput("00100000: addiu sp,sp,fff0 to fill the line");
        PrintToRegistersOutput("sp : 0000000081f00000");
    }
    TarnGUI.quickPicture = 1;  // as with Steps_per_poll
    TarnGUI.IdleProc = [] {
        makeDirty();
        TarnGUI.running = 2;
    };
    for (auto _ : state) {
        TarnGUI.running = 1;
        koGUI_MainLoop(&TarnGUI);
        benchmark::ClobberMemory();
    }
}
void movePane() {
    TarnGUI.widgets[emuOutputPane].x ^= 1;
    TarnGUI.widgets[emuOutputPane].dirty = 1;
}
void dirtyTrace() { TarnGUI.widgets[opcodesPane].dirty = TarnGUI.widgets[cpuRegistersPane].dirty = 1; }
BENCHMARK(redraw<movePane>)->Name("window/redraw/everything");
BENCHMARK(redraw<dirtyTrace>)->Name("window/redraw/trace");
BENCHMARK(redraw<MarkVideoOutputDirty>)->Name("window/redraw/picture");

}  // namespace

}  // namespace tarn::bench
