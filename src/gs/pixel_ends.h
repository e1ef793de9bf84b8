// Pixel ends: what happens to a pixel's colour after the depth test has passed.
//
// An end is positioned on a pixel of a row by start(x, y). If it supports `vectors`, stores(colours) returns
// a mask of the colours that are stored, and count(mask), if there is one, counts those that were.
#pragma once

#include "gs/gs.h"
#include "gs/pixel_writers.h"

namespace tarn {

struct StoreColour {
    static constexpr bool vectors = true;
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& pixel, u32 colour) { pixel = colour; }
    static void step() {}
    template <typename Words>
    [[gnu::always_inline]] static auto stores(const Words& colours) {
        return ~decltype(colours == colours){};
    }
};

struct StoreAndCount : StoreColour {
    static void write(u32& pixel, u32 colour) {
        pixel = colour;
        ++pixelsWritten;
    }
    template <typename Mask>
    [[gnu::always_inline]] static void count(const Mask& stored) {
        for (u32 i = 0; i < sizeof stored / sizeof(u32); ++i) {
            pixelsWritten += stored[i] != 0 ? 1 : 0;
        }
    }
};

struct DropColour {
    static constexpr bool vectors = true;
    static void start(u32 /*x*/, u32 /*y*/) {}
    static void write(u32& /*pixel*/, u32 /*colour*/) {}
    static void step() {}
    template <typename Words>
    [[gnu::always_inline]] static auto stores(const Words& colours) {
        return decltype(colours == colours){};
    }
};

template <typename Store>
struct TestAlpha : Store {
    AlphaRange range;  ///< not empty

    explicit TestAlpha(AlphaRange passed) : range(passed) {}
    void write(u32& pixel, u32 colour) const {
        if (range.contains(colour)) {
            Store::write(pixel, colour);
        }
    }
    template <typename Words>
    [[gnu::always_inline]] auto stores(const Words& colours) const {
        return range.contains(colours);
    }
};

/// Calls the selected pixel writer, as blended pixels need.
struct CallWriter {
    static constexpr bool vectors = false;
    u32 column = 0;
    u32 row = 0;

    void start(u32 x, u32 y) {
        column = x;
        row = y;
    }
    void write(u32& /*pixel*/, u32 colour) const { drawPixel(column, row, colour); }
    void step() { ++column; }
};

/// Calls draw(end) with the end that TEST and blending select for the pixels of a source. Also selects
/// drawPixel.
template <typename Source, typename Draw>
void withPixelEnd(const Source& source, Draw draw) {
    selectPixelWriter();
    const auto test = Gs.test().ate == 1 ? AlphaTest{Gs.test().atst} : AlphaTest::Always;
    const AlphaRange range = alphaRange(test, Gs.test().aref);
    const auto store = [&] {
        if (pixelsAreCounted()) {
            draw(StoreAndCount{});
        } else {
            draw(StoreColour{});
        }
    };
    if (blendingSelected()) {
        draw(CallWriter{});
    } else if constexpr (Source::constantAlpha) {
        if (range.passes(source.alpha() << 24)) {
            store();
        } else {
            draw(DropColour{});
        }
    } else if (range.empty) {
        draw(DropColour{});
    } else if (range.full()) {
        store();
    } else if (pixelsAreCounted()) {
        draw(TestAlpha<StoreAndCount>(range));
    } else {
        draw(TestAlpha<StoreColour>(range));
    }
}

}  // namespace tarn
