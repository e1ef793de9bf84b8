// Renderer benchmarks: every triangle routine, sprite and line at three sizes, from packets in
// main memory through the GIF. One item is one pixel drawn; the counter gives the time of a primitive.
#include "bench_machine.h"
#include "gif_packet.h"
#include "machine/machine.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <string>

namespace tarn::bench {

namespace {

constexpr u32 screenWidth = 640, screenHeight = 448, textureSize = 256;
constexpr u32 frameWords = screenWidth * screenHeight;
constexpr u32 depthBase = frameWords, textureBase = 2 * frameWords;  // words of local memory
constexpr u32 paletteBase = textureBase + textureSize * textureSize;
constexpr u32 setupAddress = 0x00200000, packetAddress = 0x00210000;
constexpr u32 colour = 0x80605040, depth = 1000;

// Bits of PRIM.
constexpr u32 line = 1, triangle = 3, sprite = 6;
constexpr u32 gouraud = 1 << 3, textured = 1 << 4, texelCoordinates = 1 << 8;

enum Texture : u32 { psmct32 = 0, psmt8 = 19, psmt4 = 20 };

/// What selects a routine.
struct Routine {
    const char* name;
    u32 prim;
    bool depthTested = false;
    u32 function = 0;  ///< TEX0.TFX: 0 modulate, 1 decal
    u32 format = psmct32;
};

constexpr std::array routines{
    Routine{"triangle/F", triangle},
    Routine{"triangle/F_Z", triangle, true},
    Routine{"triangle/G", triangle | gouraud},
    Routine{"triangle/FTDecal", triangle | textured, false, 1},
    Routine{"triangle/FTModulate", triangle | textured, false, 0},
    Routine{"triangle/FTDecal_Z", triangle | textured, true, 1},
    Routine{"triangle/FTModulate_Z", triangle | textured, true, 0},
    Routine{"triangle/GT", triangle | gouraud | textured},
    Routine{"sprite/flat", sprite},
    Routine{"sprite/flat_Z", sprite, true},
    Routine{"sprite/T32", sprite | textured},
    Routine{"sprite/T8", sprite | textured, false, 0, psmt8},
    Routine{"sprite/T4", sprite | textured, false, 0, psmt4},
    Routine{"line/F", line},
    Routine{"line/G", line | gouraud},
};

/// The rectangles of one size that a packet draws, side by side over the screen.
struct Size {
    const char* name;
    u32 width, height;
};
constexpr std::array sizes{Size{"640x448", screenWidth, screenHeight}, Size{"32x32", 32, 32},
                           Size{"8x8", 8, 8}};

struct Corner {
    u32 x, y, u, v;
};

/// Puts one primitive's vertices into the packet, in the layout that its tag announces.
void vertices(GifPacket& packet, const Routine& routine, std::initializer_list<Corner> corners) {
    if ((routine.prim & gouraud) == 0) {
        packet.rgbaq(colour);
    }
    u32 channel = 0x40;
    for (const Corner& corner : corners) {
        if ((routine.prim & gouraud) != 0) {
            packet.rgbaq(colour + channel);
            channel *= 16;
        }
        if ((routine.prim & textured) != 0) {
            packet.uv(corner.u, corner.v);
        }
        packet.xyz(corner.x, corner.y, depth);
    }
}

void tag(GifPacket& packet, const Routine& routine, u32 primitives) {
    const bool three = (routine.prim & 7) == triangle;
    const auto announce = [&](std::initializer_list<Descriptor> two, std::initializer_list<Descriptor> all) {
        packet.tag(primitives, three ? all : two);
    };
    using enum Descriptor;
    switch (routine.prim & (gouraud | textured)) {
    case 0:
        return announce({packedRGBAQ, packedXYZ2, packedXYZ2},
                        {packedRGBAQ, packedXYZ2, packedXYZ2, packedXYZ2});
    case gouraud:
        return announce({packedRGBAQ, packedXYZ2, packedRGBAQ, packedXYZ2},
                        {packedRGBAQ, packedXYZ2, packedRGBAQ, packedXYZ2, packedRGBAQ, packedXYZ2});
    case textured:
        return announce({packedRGBAQ, packedUV, packedXYZ2, packedUV, packedXYZ2},
                        {packedRGBAQ, packedUV, packedXYZ2, packedUV, packedXYZ2, packedUV, packedXYZ2});
    default:
        return announce({packedRGBAQ, packedUV, packedXYZ2, packedRGBAQ, packedUV, packedXYZ2},
                        {packedRGBAQ, packedUV, packedXYZ2, packedRGBAQ, packedUV, packedXYZ2, packedRGBAQ,
                         packedUV, packedXYZ2});
    }
}

/// Writes the packet's primitives: two triangles, a sprite or a line per rectangle. Returns their number.
u32 primitives(GifPacket& packet, const Routine& routine, const Size& size) {
    const bool halves = (routine.prim & 7) == triangle;
    const u32 columns = screenWidth / size.width, rows = std::min(screenHeight / size.height, 14U);
    const u32 count = columns * rows * (halves ? 2 : 1);
    tag(packet, routine, count);
    const u32 right = std::min(size.width, textureSize) - 1, bottom = std::min(size.height, textureSize) - 1;
    for (u32 row = 0; row < rows; ++row) {
        for (u32 column = 0; column < columns; ++column) {
            const u32 x = column * size.width, y = row * size.height;
            const Corner topLeft{x, y, 0, 0}, topRight{x + size.width, y, right, 0},
                bottomLeft{x, y + size.height, 0, bottom},
                bottomRight{x + size.width, y + size.height, right, bottom};
            if (halves) {
                vertices(packet, routine, {topLeft, topRight, bottomLeft});
                vertices(packet, routine, {topRight, bottomRight, bottomLeft});
            } else {
                vertices(packet, routine, {topLeft, {bottomRight.x, bottomRight.y, size.width, size.height}});
            }
        }
    }
    return count;
}

void setUp(const Routine& routine) {
    using namespace gs_register;
    GifPacket packet(setupAddress);
    packet.set(FRAME_1, screenWidth / 64 << 16);
    packet.set(ZBUF_1, depthBase / 2048);
    packet.set(XYOFFSET_1, 0);
    packet.set(SCISSOR_1, (screenWidth - 1) << 16 | u64{screenHeight - 1} << 48);
    packet.set(TEST_1, routine.depthTested ? 1 << 16 | 2 << 17 : 0);  // GEQUAL
    packet.set(TEX0_1, textureBase / 64 | textureSize / 64 << 14 | routine.format << 20 | 8U << 26 |
                           u64{8} << 30 | u64{routine.function} << 35 | u64{paletteBase / 64} << 37);
    packet.set(PRIM, routine.prim | texelCoordinates);
    packet.send();
    for (u32 i = textureBase; i < localMemoryWords; ++i) {
        Gs.vRamUL()[i] = i * 0x9E3779B1;
    }
}

/// How many pixels a packet changes.
u32 pixelsOf(const GifPacket& packet) {
    constexpr u32 untouched = 0x12345678;
    std::fill_n(Gs.vRamUL(), frameWords, untouched);
    packet.send();
    return static_cast<u32>(
        std::count_if(Gs.vRamUL(), Gs.vRamUL() + frameWords, [](u32 word) { return word != untouched; }));
}

void measure(benchmark::State& state, const Routine& routine, const Size& size) {
    startMachine();
    setUp(routine);
    GifPacket packet(packetAddress);
    const u32 count = primitives(packet, routine, size);
    const u32 pixels = pixelsOf(packet);
    if (pixels == 0) {
        state.SkipWithError("nothing is drawn");
    }
    for (auto _ : state) {
        packet.send();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * pixels);
    state.counters["primitive"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * count,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

const bool registered = [] {
    for (const Routine& routine : routines) {
        for (const Size& size : sizes) {
            const std::string name = "draw/" + std::string(routine.name) + "/" + size.name;
            benchmark::RegisterBenchmark(name.c_str(), measure, routine, size);
        }
    }
    return true;
}();

}  // namespace

}  // namespace tarn::bench
