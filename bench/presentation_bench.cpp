// Presentation benchmarks: the conversion of a picture at every depth, 1:1 and stretched. One item is one
// pixel of the destination.
#include "bench_machine.h"
#include "gs/display.h"
#include "gs/gs.h"

#include <SDL.h>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

namespace tarn::bench {

namespace {

struct Extent {
    s32 width, height;
};

using Surface = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

/// Shows a rectangle of local memory, as wide as its frame buffer.
void display(Extent rectangle) {
    GSwrite64(gs_privileged::PMODE, 1);
    GSwrite64(gs_privileged::DISPFB1, static_cast<u64>(rectangle.width / 64) << 9);
    GSwrite64(gs_privileged::DISPLAY1,
              static_cast<u64>(rectangle.width - 1) << 32 | static_cast<u64>(rectangle.height - 1) << 44);
}

void present(benchmark::State& state, s32 depth, Extent source, Extent destination) {
    startMachine();
    display(source);
    const Surface surface(SDL_CreateRGBSurface(SDL_SWSURFACE, destination.width, destination.height, depth,
                                               0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000),
                          SDL_FreeSurface);
    const bool stretched = source.width != destination.width || source.height != destination.height;
    GsHost = {};
    GsHost.buffer = surface.get();
    GsHost.conf = {
        .width = destination.width, .height = destination.height, .bpp = depth, .stretch = stretched ? 1 : 0};
    DXopen();
    for (auto _ : state) {
        forgetPicture();
        GSvsync();
        presentPicture();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * destination.width * destination.height);
    GsHost = {};
}

const bool registered = [] {
    for (const s32 depth : {15, 16, 24, 32}) {
        const auto add = [depth](const std::string& name, Extent source, Extent destination) {
            benchmark::RegisterBenchmark(("present/" + std::to_string(depth) + "/" + name).c_str(), present,
                                         depth, source, destination);
        };
        add("640x448", {640, 448}, {640, 448});
        add("stretched/512x224_to_640x448", {512, 224}, {640, 448});
        add("stretched/640x448_to_320x240", {640, 448}, {320, 240});
    }
    return true;
}();

}  // namespace

}  // namespace tarn::bench
