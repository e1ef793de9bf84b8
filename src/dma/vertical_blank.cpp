// Vertical blanks.
#include "base/device_codes.h"
#include "base/diagnostics.h"
#include "gs/gs_port.h"
#include "machine/devices.h"

namespace tarn {
void testVerticalBlank() {
    // In the other field the countdown stays as it is, so that the next step tests again.
    if (gsPort.read64(gs_privileged::FIELD) != fieldBit) {
        return;
    }
    gsPort.vsync();
    ++verticalBlanks;
    Ps2Bios.vsyncCountdown = vsyncPeriod;
    MarkVideoOutputDirty();
}

}  // namespace tarn
