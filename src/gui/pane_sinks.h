// The panes as the places to which the machine's diagnostics lead.
#pragma once

namespace tarn {

/// Leads the channels of the diagnostics to the panes of TarnGUI by their index, and the news of a picture to
/// pane 0. What is said before a pane has been added is dropped.
void connectPanes();

}  // namespace tarn
