// Opening and closing the display on a host surface, and choosing the conversion.
#include "gs/display.h"

#include "base/diagnostics.h"

#include <SDL.h>
#include <array>
#include <cstdio>

namespace tarn {
namespace {

struct Conversion {
    s32 depth;
    s32 pixelBytes;
    ScrBlitOperation plain;
    ScrBlitOperation stretched;
};

constexpr std::array<Conversion, 4> conversions{{
    {15, 2, ScrBlit15, ScrBlit15S},
    {16, 2, ScrBlit16, ScrBlit16S},
    {24, 3, ScrBlit24, ScrBlit24S},
    {32, 4, ScrBlit32, ScrBlit32S},
}};

}  // namespace

void fillWithGrey() {
    forgetPicture();
    if (GsHost.buffer != nullptr) {
        SDL_FillRect(GsHost.buffer, nullptr, SDL_MapRGB(GsHost.buffer->format, 221, 221, 221));
    }
}

int DXopen() {
    if (GsHost.DXinit == 1) {
        return 0;
    }
    if (GsHost.conf.fullscreen != 0) {
        return -1;
    }
    GsHost.depth = GsHost.conf.bpp;
    if (GsHost.buffer == nullptr) {
        printDiagnostic("DXopenError : Create buffer\n");
    }
    GsHost.DXinit = 1;
    DXupdScrBlit();
    fillWithGrey();
    return 0;
}

void DXclose() {
    forgetPicture();
    GsHost.DXinit = 0;
    if (GsHost.conf.fullscreen == 0) {
        GsHost.buffer = nullptr;
    }
}

void DXupdScrBlit() {
    forgetPicture();
    for (const Conversion& conversion : conversions) {
        if (conversion.depth == GsHost.depth) {
            GsHost.ScrBlit = GsHost.conf.stretch != 0 ? conversion.stretched : conversion.plain;
            GsHost.pixelBytes = conversion.pixelBytes;
        }
    }
}

}  // namespace tarn
