// Placeholders until this subsystem is built.
#include "dma/dma.h"
namespace tarn {
void DmaUpdate() {}
void GSUpdate() {}
void DmaPrintChannelInfo(u8) {}
}  // namespace tarn
