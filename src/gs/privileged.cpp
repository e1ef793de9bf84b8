// The privileged registers, which are memory-mapped: display set-up, CSR, the field bit.
#include "base/bits.h"
#include "base/device_codes.h"
#include "gs/gs.h"
#include "gs/local_memory.h"

namespace tarn {
namespace {

using namespace gs_privileged;

GsDispFb decodeDispFb(u64 value) {
    const u32 fbw = bits(value, 9, 6) * 64;
    return {
        .fbp = bits(value, 0, 9) * 2048,
        .fbw = fbw,
        .maxRows = maxRowsOf(fbw),
        .psm = bits(value, 15, 5),
        .dbx = bits(value, 32, 11),
        .dby = bits(value, 43, 11),
    };
}

void writeDisplay(GsDisplay& display, u64 value) {
    Gs.magh = bits(value, 23, 4) + 1;
    Gs.magv = bits(value, 59, 2) + 1;  // bits 27-28 on the console
    display.width = (bits(value, 32, 12) + 1) / Gs.magh;
    display.height = (bits(value, 44, 11) + 1) / Gs.magv;
    if (Gs.smode2.int_ == 1 && Gs.smode2.ffmd == 1) {
        display.height >>= 1;
    }
}

void selectCircuit() { Gs.currentCircuit = Gs.pmode; }

}  // namespace

void GSwrite64(u32 address, u64 value) {
    switch (address) {
    case PMODE:
        Gs.pmode = bit(value, 0) != 0 ? 0 : 1;
        break;
    case SMODE2:
        Gs.smode2 = {.int_ = bit(value, 0), .ffmd = bit(value, 1), .dpms = bits(value, 2, 2)};
        break;
    case DISPFB1:
        Gs._gsdspfb[0] = decodeDispFb(value);
        break;
    case DISPFB2:
        Gs._gsdspfb[1] = decodeDispFb(value);
        break;
    case DISPLAY1:
        writeDisplay(Gs._gsmode[0], value);
        break;
    case DISPLAY2:
        writeDisplay(Gs._gsmode[1], value);
        break;
    default:
        break;
    }
    selectCircuit();
}

void GSwrite32(u32 address, u32 value) {
    // The other registers need their upper word and ignore 32-bit writes; DISPFB takes it as 0.
    if (address == PMODE || address == DISPFB1 || address == DISPFB2) {
        GSwrite64(address, value);
    }
    selectCircuit();
}

u32 GSread32(u32 address) { return address == CSR ? csrVerticalBlank : 0; }

u64 GSread64(u32 address) {
    switch (address) {
    case FIELD:
        Gs.interlace ^= 1;
        return u64{Gs.interlace} * fieldBit;
    case CSR:
        return csrVerticalBlank;
    default:
        return 0;
    }
}

}  // namespace tarn
