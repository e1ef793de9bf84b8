// The vertical blank at the end of its countdown.
#include "base/diagnostics.h"
#include "gs/gs.h"
#include "machine/devices.h"

namespace tarn {
namespace {

constexpr u32 fieldRegister = 0x12000400;  ///< each read flips the interlace field
constexpr u64 fieldBit = 0x2000;

}  // namespace

void testVerticalBlank() {
    // On the other field the countdown stays where it is, so the next step asks again.
    if (GSread64(fieldRegister) != fieldBit) {
        return;
    }
    GSvsync();
    ++verticalBlanks;
    Ps2Bios.vsyncCountdown = vsyncPeriod;
    MarkVideoOutputDirty();
}

}  // namespace tarn
