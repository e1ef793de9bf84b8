// Connects the machine's diagnostics to the panes.
#pragma once

namespace tarn {

/// Connects the diagnostics channels to the panes of TarnGUI by index, and new pictures to pane 0. Text for a
/// pane that has not been added yet is dropped.
void connectPanes();

}  // namespace tarn
