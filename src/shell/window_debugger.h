// The debugger that the window lets in.
#pragma once

namespace tarn {

/// Listens on the port of the settings, says on standard error and in the EmuOutput pane whether that works,
/// and has the debugger run the machine from then on; the machine does not wait for it. To be called when the
/// machine is ready to run.
void startDebugger();

/// Says goodbye to a debugger that is attached.
void endDebugger();

}  // namespace tarn
