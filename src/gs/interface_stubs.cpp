// Placeholders until the display is built.
#include "gs/display.h"
#include "gs/gs.h"
namespace tarn {
void LoadConfig() {}
int DXopen() { return 0; }
void DXclose() {}
void DXupdate() {}
bool GSmakeSnapshot(const char*) { return false; }
}  // namespace tarn
