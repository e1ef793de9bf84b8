// Bitmap fonts: glyph markers, text and its placement, recolouring, pixel access, unusable images.
#include "gui/bmp_file.h"
#include "gui/font_extras.h"
#include "gui/toolkit_extras.h"
#include "support/machine_test.h"
#include "support/run_directory.h"
#include "surfaces.h"

#include <cstring>

namespace tarn::test {
namespace {

TEST(Font, MarkersGiveTheGlyphs) {
    // At the right edge a run that goes on counts, one that starts in the last column does not.
    const std::pair<int, Runs> cases[] = {
        {100, {{2, 5}, {9, 2}}}, {12, {{1, 2}, {8, 4}}}, {12, {{1, 2}, {11, 1}}}, {12, {}}, {1, {}}};
    for (const auto& [width, runs] : cases) {
        const FontPtr font = makeFont(width, 8, runs);
        for (std::size_t i = 0; i < 3; ++i) {
            const bool exists = i < runs.size() && runs[i].first < width - 1;
            const SDL_Rect& glyph = font->glyphs[33 + i];
            EXPECT_EQ(glyph.x, exists ? runs[i].first : 0) << i;
            EXPECT_EQ(glyph.y, exists ? 1 : 0) << i;
            EXPECT_EQ(glyph.w, exists ? runs[i].second : 0) << i;
            EXPECT_EQ(glyph.h, exists ? 8 : 0) << i;
        }
        EXPECT_EQ(CharWidth(font.get(), ' '), CharWidth(font.get(), '!'));
        EXPECT_EQ(FontHeight(font.get()), 8);
        EXPECT_EQ(GetCurrentFont(), font.get());
    }
    EXPECT_EQ(outputOf([] { makeFont(12, 8, {{8, 4}}); }), "x too big in GetPixel!\n") << "looks for the end";
    EXPECT_EQ(GetCurrentFont(), nullptr) << "no font that is freed";
    const FontPtr full = makeFont(1200, 4, steppedGlyphs(230));
    EXPECT_EQ(TextWidthFont(full.get(), "! \x80\xFF"), 1 + 1 + 3 + 1) << "codes are unsigned, and end at 255";
}

TEST(Font, TextAdvancesByWhatIsDrawn) {
    // "!" and the blank are 5 wide, the quotation mark 2, # 4; there are no further glyphs.
    const FontPtr font = makeFont(40, 5, {{2, 5}, {9, 2}, {13, 4}});
    struct Case {
        s32 x;
        std::string text;
        Runs ink;
        s32 advance;
    };
    const Case cases[] = {
        {0, "\" #", {{0, 2}, {7, 4}}, 4}, {3, "", {}, 0},
        {1, "!\n~\"", {{1, 7}}, 2},       {2, "! ", {{2, 5}}, 5},
        {14, "!#\"", {{14, 6}}, 0},       {-3, "!\"", {{0, 2}}, 1},
    };
    for (const Case& c : cases) {
        const SurfacePtr surface = makeSurface(20, 6);
        EXPECT_EQ(PutStringFont(surface.get(), font.get(), c.x, 0, c.text), c.advance) << c.text;
        EXPECT_EQ(inkRuns(surface.get()), c.ink) << c.text;
        EXPECT_EQ(inkRuns(surface.get(), 4), Runs()) << "glyphs are one row less than the image";
    }
}

TEST(Font, TextIsPlaced) {
    const FontPtr font = makeFont(140, 5, {{2, 10}, {20, 100}});
    const auto placed = [](int width, auto put, const char* text) {
        const SurfacePtr surface = makeSurface(width, 5);
        put(surface.get(), 0, text);
        return inkRuns(surface.get());
    };
    EXPECT_EQ(placed(320, CenteredPutString, "\""), (Runs{{110, 100}}));
    EXPECT_EQ(placed(320, RightPutString, "\""), (Runs{{219, 100}}));
    EXPECT_EQ(placed(320, LeftPutString, "\""), (Runs{{0, 100}}));
    EXPECT_EQ(placed(100, JustifiedPutString, "!!"), (Runs{{0, 20}})) << "no blank";
    EXPECT_EQ(placed(31, JustifiedPutString, "! !"), (Runs{{0, 10}, {20, 10}})) << "no room to spread";
    EXPECT_EQ(placed(41, JustifiedPutString, "! !"), (Runs{{0, 10}, {31, 10}})) << "10, and one more";
    EXPECT_EQ(placed(84, JustifiedPutString, "! ! ! !"), (Runs{{0, 10}, {25, 10}, {50, 10}, {74, 10}}))
        << "13 for three gaps, two of them a pixel wider";
}

TEST(Font, RecolouringScalesAllButTheKey) {
    const FontPtr font = makeFont(10, 4, {{2, 3}});
    FontPtr coloured;
    EXPECT_EQ(outputOf([&] { coloured = SetFontColor(font.get(), 255, 128, 0); }),
              "looking...\nunlooking...\n");
    EXPECT_EQ(pixelOf(coloured->surface.get(), 3, 1), u32{0xD0} | 0xC8 * 128 / 255 << 8);
    EXPECT_EQ(pixelOf(coloured->surface.get(), 7, 1), keyColour);
    EXPECT_EQ(pixelOf(font->surface.get(), 3, 1), inkColour);
    EXPECT_EQ(GetCurrentFont(), font.get()) << "recolouring is not loading";
    PutPixel(font->surface.get(), 0, 3, 7);
    EXPECT_EQ(tarn::keyColour(font->surface.get()), 7U) << "of the bottom row";
}

/// A BMP file: eight pixels in a row, glyphs of one and two pixels among them.
std::string imageOf(u32 headerSize, u32 depth, u32 compression, const std::vector<u32>& masks) {
    std::vector<u32> header{headerSize, 8, 1, 1 | depth << 16, compression};
    if (headerSize == 12) {
        header = {headerSize, 8 | 1 << 16, 1 | depth << 16};
    }
    header.resize(std::min(headerSize, 40U) / 4);
    header.insert(header.end(), masks.begin(), masks.end());
    header.resize(std::max(header.size(), std::size_t{headerSize / 4}));
    std::string pixels;
    for (const bool ink : {false, true, false, false, true, true, false, false}) {
        pixels.append(depth / 8, ink ? '\xFF' : '\0');
    }
    const auto start = static_cast<u32>(14 + header.size() * 4),
               size = static_cast<u32>(start + pixels.size());
    header.insert(header.begin(), {size, 0, start});
    return "BM" + std::string(reinterpret_cast<const char*>(header.data()), header.size() * 4) + pixels;
}

TEST(Font, LoadsOnlySaneImages) {
    const RunDirectory directory;
    SDL_SaveBMP(makeStrip(501, 11, steppedGlyphs(94)).get(), "font.bmp");
    const std::string contents = RunDirectory::read("font.bmp");
    const std::vector<u8> sane{contents.begin(), contents.end()};
    const FontPtr font = LoadFont("font.bmp");
    EXPECT_EQ(CharWidth(font.get(), '~'), 93 % 3 + 1);
    for (const char* path : {static_cast<const char*>(nullptr), "/nonexistent.bmp", "/tmp"}) {
        EXPECT_EQ(LoadFont(path), nullptr);
    }
    EXPECT_EQ(GetCurrentFont(), font.get()) << "a failure leaves it";
    ASSERT_TRUE(isSaneBmp(sane));
    for (std::size_t size = 0; size < sane.size(); size += 53) {
        EXPECT_FALSE(isSaneBmp({sane.data(), size})) << size;
    }
    EXPECT_FALSE(isSaneBmp({sane.data(), sane.size() - 1}));
    std::vector<u8> palette = sane;
    palette[28] = 8, palette[47] = 1;
    EXPECT_TRUE(isSaneBmp(palette)) << "256 colours";
    // Words of the header that no reader may trust, by offset: magic, pixels, header size, width, height,
    // depth with compression, colours of a palette.
    const std::pair<std::size_t, u32> patches[] = {
        {0, 0},           {10, 0x7FFFFFFF}, {10, 20},         {14, 13},      {14, 0xFFFFFFFF},
        {18, 0},          {18, 0xFFFFFFF0}, {18, 0x40000001}, {22, 0},       {22, 12},
        {22, 0x80000000}, {28, 7},          {28, 0x10018},    {28, 0x20008},
    };
    for (const auto& [offset, value] : patches) {
        std::vector<u8> bytes = sane;
        std::memcpy(&bytes[offset], &value, sizeof value);
        bytes[47] = offset == 28 ? 2 : 0;
        EXPECT_FALSE(isSaneBmp(bytes)) << offset << ": " << value;
    }
    BitmapFont nothing;
    EXPECT_EXIT(InitFont(&nothing), testing::ExitedWithCode(1), "^BFont: The font has not been loaded!\n$");
}

TEST(Font, LoadsImagesWrittenInOtherWays) {
    struct Way {
        u32 headerSize, depth, compression;
        std::vector<u32> masks;
        bool isSane;
    };
    const Way ways[] = {{40, 32, 3, {0xFF000000, 0xFF0000, 0xFF00}, true},
                        {40, 16, 3, {0xF800, 0x7E0, 0x1F}, true},
                        {40, 32, 0, {0xFF, 0xFF00, 0xFF0000}, true},
                        {124, 32, 3, {0xFF, 0xFF00, 0xFF0000}, true},
                        {12, 24, 0, {}, true},
                        {40, 32, 0, {}, true},
                        {40, 32, 3, {0xFF, 0xFF00, 0xFF00}, false},
                        {40, 16, 3, {0x1FF, 0xE00, 0xF000}, false},
                        {40, 32, 3, {0xFF, 0, 0xFF00}, false},
                        {40, 32, 3, {5, 0xFF00, 0xFF0000}, false},
                        {40, 24, 3, {}, false}};
    const RunDirectory directory;
    for (const Way& way : ways) {
        directory.write("font.bmp", imageOf(way.headerSize, way.depth, way.compression, way.masks));
        const FontPtr loaded = LoadFont("font.bmp");
        ASSERT_EQ(loaded != nullptr, way.isSane) << way.headerSize << ' ' << way.depth;
        EXPECT_TRUE(!way.isSane || CharWidth(loaded.get(), '"') == 2) << way.headerSize << ' ' << way.depth;
    }
}

}  // namespace
}  // namespace tarn::test
