// What both programs set up around the machine: version, MainScreen, the panes, signals.
#pragma once

#include "gui/screen.h"
#include "shell/pane_layout.h"
#include "shell/version.h"

#include <span>

namespace tarn {

inline constexpr const char* programName = "Tarn";

/// The surface of the emulated picture, owned by the program.
inline SDL_Surface* MainScreen = nullptr;

/// Creates MainScreen with the size and depth of the settings. On failure it is null, and a message is
/// printed.
void createMainScreen();
void freeMainScreen();

/// The bytes of the picture, which saved states include. Empty before it exists.
std::span<u8> picturePixels();

using AddTextOperation = koGUItextLine* (*)(koGUIwidget*, const char*);

/// Adds the four panes to TarnGUI: the picture, and three text panes, which append with `addText`.
void addPanes(const WindowLayout& layout, AddTextOperation addText);

/// Opens closed standard streams on /dev/null, so that no other file gets their descriptors, turns SIGPIPE
/// into a failed write, and makes SIGINT and SIGTERM request a stop.
void prepareProcess();

/// Whether SIGINT or SIGTERM has been received.
bool stopRequested();

}  // namespace tarn
