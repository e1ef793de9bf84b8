// Screenshots.
#pragma once

namespace tarn {

/// Writes the emulated display to a PNG file with a free number in the working directory, and says so in the
/// EmuOutput pane.
void takeScreenshot();

}  // namespace tarn
