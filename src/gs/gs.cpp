// The renderer's life cycle: local memory, start values, the display.
#include "gs/gs.h"

#include "base/buffer.h"
#include "gs/display.h"
#include "gs/local_memory.h"
#include "gs/registers.h"

#include <memory>

namespace tarn {

s32 GSinit() {
    Buffer memory;
    if (!memory.allocate(localMemoryBytes)) {
        return -1;
    }
    forgetPicture();
    Gs.vRam = std::move(memory);

    gsSetCtxt(0);
    Gs.currentCircuit = 0;
    for (GsDisplay& mode : Gs._gsmode) {
        mode = {.x = 0, .y = 0, .width = 640, .height = 480};
    }
    for (GsDispFb& buffer : Gs._gsdspfb) {
        buffer.fbw = 640;
        buffer.maxRows = maxRowsOf(buffer.fbw);
        buffer.dbx = 0;
        buffer.dby = 0;
    }
    Gs.prac = 1;
    Gs.currentPrim = 0;  // in spite of prac, until PRMODECONT is written
    return 0;
}

s32 GSopen(SDL_Surface* display, const char* /*title*/) {
    LoadConfig();
    GsHost.buffer = display;
    return DXopen() == -1 ? -1 : 0;
}

void GSclose() { DXclose(); }

void GSshutdown() {
    forgetPicture();
    Gs.vRam.release();
}

void GSreset() {
    GsHost = GsDisplayState{};  // first: its surface may be gone
    GSshutdown();
    std::destroy_at(&Gs);
    std::construct_at(&Gs);
}

void GSvsync() { DXupdate(); }

}  // namespace tarn
