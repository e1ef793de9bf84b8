// Privileged register writes followed by presentation, on surfaces of any size and depth with configurations
// that need not fit them.
#include "gs/display.h"
#include "support.h"

#include <SDL.h>
#include <memory>

namespace tarn {
namespace {

constexpr u32 registers[] = {0x12000000, 0x12000020, 0x12000070, 0x12000080, 0x12000090,
                             0x120000A0, 0x12000400, 0x12001000, 0x120000E0};
constexpr u32 sizes[] = {0, 1, 2, 64, 255, 320, 640, 65856, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
constexpr u32 depths[] = {0, 8, 15, 16, 24, 32, 0xFFFFFFF0};

using Surface = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

Surface takeSurface(fuzz::Input& input) {
    constexpr s32 surfaceDepths[] = {8, 15, 16, 24, 32};
    const s32 depth = surfaceDepths[input.take<u8>() % std::size(surfaceDepths)];
    const u8 wide = input.take<u8>();
    const s32 width = wide >= 0xF0 ? (wide & 15) * 70 : wide;  // mostly small, for speed
    const s32 height = input.take<u8>() % 64;
    return {SDL_CreateRGBSurface(0, width, height, depth, 0xFF0000, 0xFF00, 0xFF, 0), SDL_FreeSurface};
}

void access(fuzz::Input& input) {
    const u8 kind = input.take<u8>();
    const u32 address = input.pick(registers);
    if ((kind & 3) == 0) {
        GSwrite32(address, input.take<u32>());
    } else if ((kind & 3) == 1) {
        fuzz::require(GSread32(address) <= 8 && GSread64(address) <= 0x2000, "what registers read as");
    } else {
        GSwrite64(address, input.take<u64>());
    }
}

/// What the display relies on, whatever was written.
void checkState() {
    fuzz::require(&Gs.gsdspfb() == &Gs._gsdspfb[Gs.pmode] && &Gs.gsmode() == &Gs._gsmode[Gs.pmode],
                  "the circuit is the one PMODE chose");
    fuzz::require(u64{Gs.gsdspfb().fbw} * Gs.gsdspfb().maxRows <= localMemoryWords, "the rows fit");
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    fuzz::restartRenderer();
    fuzz::Input input({data, size});
    while (!input.empty()) {
        const Surface surface = takeSurface(input);
        GsHost.conf = {.width = static_cast<s32>(input.pick(sizes)),
                       .height = static_cast<s32>(input.pick(sizes)),
                       .bpp = static_cast<s32>(input.pick(depths)),
                       .fullscreen = input.take<u8>() == 0xFF,
                       .stretch = input.take<u8>() & 1};
        GsHost.buffer = surface.get();
        DXopen();
        for (u8 count = input.take<u8>() & 7; count > 0; --count) {
            access(input);
        }
        checkState();
        GSvsync();
        GSclose();
        GsHost.buffer = nullptr;  // still held when full screen was asked for
    }
    return 0;
}
