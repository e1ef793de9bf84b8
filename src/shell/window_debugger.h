// The debugger connection of the window.
#pragma once

namespace tarn {

/// Listens on the port in the settings, and reports on standard error and in the EmuOutput pane whether that
/// worked. From then on the debugger, once attached, controls the run. Call it when the machine is ready to
/// run.
void startDebugger();

/// Disconnects an attached debugger.
void endDebugger();

}  // namespace tarn
