// The machine as tests use it: every record in its start state, the four panes, the memory areas.
// Header only and free of GoogleTest, so that fuzzers can use it too.
#pragma once

#include "base/buffer.h"
#include "gs/gs.h"
#include "gui/pane_sinks.h"
#include "gui/screen.h"
#include "loader/copy.h"
#include "loader/input_files.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "machine/settings.h"
#include "memory/allocation.h"
#include "memory/memory.h"
#include "shell/driver.h"

#include <span>
#include <string>
#include <vector>

namespace tarn::test {

/// The four panes of the window, empty, without a window.
inline void makePanes() {
    connectPanes();
    for (koGUIwidget& pane : std::span(TarnGUI.widgets).first(TarnGUI.nbWidgets)) {
        pane = {};
    }
    TarnGUI.nbWidgets = 0;
    for (const char* title : {"VideoOutput", "EmuOutput", "Opcodes", "CpuRegisters"}) {
        koGUIwidget pane;
        koGUIwidget_init(&pane, TarnGUI.nbWidgets == videoOutputPane ? PaneKind::Image : PaneKind::Text, 0, 0,
                         500, 170, title);
        koGUI_AddWidget(&TarnGUI, &pane);
    }
}

/// Puts the records back as at process start, and the panes to no lines. Buffers and the renderer stay.
inline void resetRecords() {
    reset(machine);
    Settings = {};
    Loader = {};
    Driver = {};
    makePanes();
}

/// Puts everything back as at process start: no memory either; but the panes exist.
inline void resetMachine() {
    GSreset();
    FreeAllMemory();
    resetRecords();
}

/// The four areas and local memory, zeroed; leaves no lines in the panes.
inline void allocateMachine() {
    MipsMemoryAlloc();
    MipsSpecialAreaMemoryAlloc();
    MipsGSAreaMemoryAlloc();
    MipsBiosMemoryAlloc();
    GSinit();
    makePanes();
}

/// The lines of a text pane so far, first to last.
inline std::vector<std::string> paneLines(u32 index) {
    std::vector<std::string> lines;
    for (const koGUItextLine* line = TarnGUI.widgets[index].textLines; line->next != nullptr;
         line = line->next) {
        lines.emplace_back(line->text.get());
    }
    return lines;
}

}  // namespace tarn::test
