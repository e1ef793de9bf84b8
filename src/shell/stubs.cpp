// Placeholders until this subsystem is built.
#include "shell/driver.h"
namespace tarn {
int TarnLoadConfig() { return -1; }
void koGUI_TarnInitProc() {}
void koGUI_TarnProc() {}
void koGUI_TarnEndingProc() {}
void driverStep() {}
}  // namespace tarn
