// The vertical blank at the end of its countdown.
#include "base/device_codes.h"
#include "base/diagnostics.h"
#include "gs/gs_port.h"
#include "machine/devices.h"

namespace tarn {
void testVerticalBlank() {
    // On the other field the countdown stays where it is, so the next step asks again.
    if (gsPort.read64(gs_privileged::FIELD) != fieldBit) {
        return;
    }
    gsPort.vsync();
    ++verticalBlanks;
    Ps2Bios.vsyncCountdown = vsyncPeriod;
    MarkVideoOutputDirty();
}

}  // namespace tarn
