// Sprites: rectangles given by two corners; flat, depth-tested or textured.
#include "gs/drawing.h"
#include "gs/local_memory.h"
#include "gs/palette.h"
#include "gs/spans.h"
#include "gs/texel_sources.h"

#include <algorithm>

namespace tarn {
namespace {

using namespace pixel_format;

// Colour sources of textured sprites. Each starts at the first texel of a row and steps one texel per pixel.

struct Indexed8Source {
    static constexpr bool constantAlpha = false;
    static constexpr u32 fewestForVectors = 0;
    const Palette* palette;
    const u8* memory = Gs.vRam;
    u32 base = Gs.tex0().tbp0 * 4;
    u32 stride = Gs.tex0().tbw;
    u32 index = 0;

    bool startRow(s32 u, s32 v) {
        index = base + static_cast<u32>(v) * stride + static_cast<u32>(u);
        return true;
    }
    u32 colour() const { return (*palette)[memory[index % localMemoryBytes]]; }
    void step() { ++index; }
};

struct Indexed4Source {
    static constexpr bool constantAlpha = false;
    static constexpr u32 fewestForVectors = 0;
    const Palette* palette;
    const u8* memory = Gs.vRam;
    u32 base = Gs.tex0().tbp0 * 4;
    u32 stride = Gs.tex0().tbw / 2;
    u32 row = 0;
    u32 column = 0;

    bool startRow(s32 u, s32 v) {
        row = base + static_cast<u32>(v) * stride;
        column = static_cast<u32>(u);
        return true;
    }
    u32 colour() const {
        const u8 pair = memory[(row + column / 2) % localMemoryBytes];
        return (*palette)[column % 2 == 0 ? pair & 15 : pair >> 4];  // the low nibble comes first
    }
    void step() { ++column; }
};

/// Fills the rectangle between two corners. Intentional: they are not ordered, so the rectangle is empty if
/// the second corner is left of or above the first.
template <typename Source, typename Depth, typename End>
void fillRectangle(const GsVertex* corners, Source source, Depth depth, End end) {
    const SpanTarget target;
    const s32 width = corners[1].x - corners[0].x;
    countWork(width, corners[1].y - corners[0].y);
    withVectors([=](auto words) __attribute__((always_inline)) {
        Source s = source;
        Depth d = depth;
        End e = end;
        for (s32 y = corners[0].y; y < corners[1].y; ++y) {
            fillSpan<words>(target, corners[0].x, y, width, s, d, e);
        }
    });
}

template <typename Source>
void drawTextured(const GsVertex* corners, Source source) {
    const s32 width = std::min(corners[1].x - corners[0].x, corners[1].u - corners[0].u);
    const s32 height = std::min(corners[1].y - corners[0].y, corners[1].v - corners[0].v);
    countWork(width, height);
    withPixelEnd(source, [=]<typename End>(End end) {
        const SpanTarget target;
        withVectors([=](auto words) __attribute__((always_inline)) {
            Source s = source;
            NoDepth depth;
            End e = end;
            for (s32 row = 0; row < height && s.startRow(corners[0].u, corners[0].v + row); ++row) {
                fillSpan<words>(target, corners[0].x, corners[0].y + row, width, s, depth, e);
            }
        });
    });
}

}  // namespace

void drawSprite(const GsVertex* vertices) {
    const FlatColour source;
    withPixelEnd(source, [&](auto end) { fillRectangle(vertices, source, NoDepth{}, end); });
}

void drawSprite_Z(const GsVertex* vertices) {
    const FlatColour source;
    const u64 z = u64{vertices[1].z} << 16;
    selectPixelWriter();
    withDepthTest([&]<DepthTest test>(SteppedDepth<test> depth) {
        depth.z = z;
        if constexpr (test == DepthTest::Always) {
            withPixelEnd(source, [&](auto end) { fillRectangle(vertices, source, depth, end); });
        } else {
            // With a depth test, a sprite's pixels have no alpha test.
            if (pixelsAreCounted()) {
                fillRectangle(vertices, source, depth, StoreAndCount{});
            } else {
                fillRectangle(vertices, source, depth, StoreColour{});
            }
        }
    });
}

void drawSpriteT(const GsVertex* vertices) {
    switch (Gs.tex0().psm) {
    case PSMT8: {
        const Palette palette = loadPalette(PSMT8);
        drawTextured(vertices, Indexed8Source{&palette});
        break;
    }
    case PSMT4: {
        const Palette palette = loadPalette(PSMT4);
        drawTextured(vertices, Indexed4Source{&palette});
        break;
    }
    default:
        drawTextured(vertices, TexelRowSource{});
        break;
    }
}

}  // namespace tarn
