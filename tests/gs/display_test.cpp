// Tests the display: every conversion against a formula per pixel, opening, configuration and snapshots.
#include "gs/display.h"

#include "gs/interface_extras.h"
#include "gui/surface.h"
#include "machine/settings.h"
#include "support/gs_machine.h"
#include "support/machine_test.h"
#include "support/run_directory.h"

#include <SDL.h>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace tarn::test {
namespace {

using Surface = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

/// The kind of surface that the machine is given: these masks whatever the depth.
Surface makeSurface(s32 width, s32 height, s32 depth) {
    const u32 alpha = depth == 32 ? 0xFF000000 : 0;
    return {createPicture(0, width, height, depth, alpha), SDL_FreeSurface};
}

std::vector<u8> bytesOf(const SDL_Surface& surface) {
    const u8* pixels = static_cast<const u8*>(surface.pixels);
    return {pixels, pixels + surface.h * surface.pitch};
}

class Display : public GsMachine {
  protected:
    Display() { fillLocalMemory(); }
    ~Display() override { Settings = TarnSettings{}; }

    static void show(u64 fbp, u64 fbw, u64 dbx, u64 dby, u64 width, u64 height) {
        GSwrite64(gs_privileged::PMODE, 1);
        GSwrite64(gs_privileged::DISPFB1, fbp | fbw << 9 | dbx << 32 | dby << 43);
        GSwrite64(gs_privileged::DISPLAY1, (width - 1) << 32 | (height - 1) << 44);
    }

    static void open(SDL_Surface* surface, s32 width, s32 height, s32 depth, s32 stretch) {
        GsHost = {};
        GsHost.conf = {.width = width, .height = height, .bpp = depth, .stretch = stretch};
        GsHost.buffer = surface;
        ASSERT_EQ(DXopen(), 0);
    }

    RunDirectory directory;
};

/// The host's bytes of a GS word; the count says how many of them are written.
std::pair<std::array<u8, 3>, u32> hostBytes(u32 p, s32 depth) {
    const u32 red = p & 0xFF;
    const u32 green = p >> 8 & 0xFF;
    const u32 blue = p >> 16 & 0xFF;
    if (depth >= 24) {
        return {{static_cast<u8>(blue), static_cast<u8>(green), static_cast<u8>(red)}, 3};
    }
    const u32 word =
        depth == 15 ? red / 8 * 1024 + green / 8 * 32 + blue / 8 : red / 8 * 2048 + green / 4 * 32 + blue / 8;
    return {{static_cast<u8>(word), static_cast<u8>(word >> 8)}, 2};
}

/// What presenting should leave in `bytes`, the surface's content before.
void present(std::vector<u8>& bytes, const SDL_Surface& surface) {
    const GsConfig& conf = GsHost.conf;
    if ((conf.bpp + 7) / 8 != surface.format->BytesPerPixel) {
        return;
    }
    const s32 w = static_cast<s32>(Gs.gsmode().width);
    const s32 h = static_cast<s32>(Gs.gsmode().height);
    for (s32 row = 0; row < std::min(conf.height, surface.h); ++row) {
        for (s32 column = 0; column < std::min(conf.width, surface.w); ++column) {
            s32 x = column - (w < conf.width ? (conf.width - w) / 2 : 0);
            s32 y = row - (h < conf.height ? (conf.height - h) / 2 : 0);
            if (conf.stretch != 0) {
                x = 1 + (column * ((w << 16) / conf.width) >> 16);
                y = row * ((h << 16) / conf.height) >> 16;
            } else if (x < 0 || x >= w || y < 0 || y >= h) {
                continue;
            }
            const u32 index = Gs.gsdspfb().fbp + (Gs.gsdspfb().dby + static_cast<u32>(y)) * Gs.gsdspfb().fbw +
                              Gs.gsdspfb().dbx + static_cast<u32>(x);
            const auto [pixel, count] = hostBytes(pattern(index % localMemoryWords), conf.bpp);
            std::memcpy(
                &bytes[static_cast<u32>(row * surface.pitch + column * surface.format->BytesPerPixel)],
                pixel.data(), count);
        }
    }
}

/// Some cases have a depth that the surface has not or no size, and present nothing.
TEST_F(Display, EveryPixelIsTheFormulas) {
    for (u32 number = 0; number < 200; ++number) {
        generator.seed(number);
        const WideVectors vectors(random(2) != 0);
        const s32 depth = std::array{15, 16, 24, 32}[number % 4];
        const s32 told = random(6) == 0 ? std::array{0, 8, 16, 24, 32}[random(5)] : depth;
        constexpr std::array extremes{0, -5, INT32_MIN, INT32_MAX};
        const s32 width = random(10) == 0 ? extremes[random(4)] : static_cast<s32>(random(700));
        const s32 height = random(10) == 0 ? extremes[random(4)] : static_cast<s32>(random(90));
        // Every third surface is not the size that the configuration gives.
        const bool other =
            static_cast<u32>(width) - 1 >= 700 || static_cast<u32>(height) - 1 >= 90 || random(3) == 0;
        const Surface surface = makeSurface(other ? 1 + static_cast<s32>(random(300)) : width,
                                            other ? 1 + static_cast<s32>(random(90)) : height, depth);
        ASSERT_NE(surface, nullptr);
        const u32 shownWidth = random(4) == 0 && width > 0 ? static_cast<u32>(width) : 1 + random(1000);
        show(random(2) != 0 ? random(512) : 511, random(64), random(2048), random(2048), shownWidth,
             1 + random(120));
        open(surface.get(), width, height, told, number / 4 % 2);
        std::vector<u8> expected = bytesOf(*surface);
        for (u8& byte : expected) {
            byte = static_cast<u8>(random(256));
        }
        std::memcpy(surface->pixels, expected.data(), expected.size());
        present(expected, *surface);
        GSvsync();
        presentPicture();
        ASSERT_TRUE(bytesOf(*surface) == expected) << "case " << number;
    }
}

/// Whatever happens between blanks, and whenever the surface is looked at, it shows what it would if every
/// blank converted its picture at once.
TEST_F(Display, ShowsTheLastBlanksPictureWheneverItIsLookedAt) {
    using namespace gs_register;
    for (u32 number = 0; number < 300; ++number) {
        generator.seed(number);
        const s32 depth = std::array{15, 16, 24, 32}[number % 4];
        const Surface surface = makeSurface(40, 24, depth);
        std::vector<u8> expected(bytesOf(*surface).size());
        const auto smallBuffer = [&] {
            return random(4) * 32 | u64{random(3)} << 16;
        };  // in pages, 64 pixels
        const auto corner = [&] { return random(48) << 4 | random(40) << 20; };
        const auto area = [&] { return random(40) | random(40) << 16 | u64{random(30)} << 32; };
        show(0, 1, 0, 0, 40, 24);
        open(surface.get(), 40, 24, depth, number / 4 % 2);
        expected = bytesOf(*surface);
        for (u32 step = 0; step < 80; ++step) {
            GifStream stream;
            switch (random(10)) {
            case 0:
                show(random(4), random(3), random(20), random(40), 1 + random(48), 1 + random(30));
                break;
            case 1:
                GSwrite64(gs_privileged::DISPFB2, random(4) | random(3) << 9);
                GSwrite64(gs_privileged::PMODE, random(2));
                break;
            case 2:
                stream.write(FRAME_1, smallBuffer() / 32).write(ZBUF_1, random(4));
                stream.write(TEST_1, random(2) << 16 | 1 << 17).write(SCISSOR_1, area() | u64{47} << 48);
                break;
            case 3:
            case 4:
                stream.write(RGBAQ, static_cast<u32>(generator()))
                    .write(PRIM, std::array<u64, 4>{0, 1, 3, 6}[random(4)]);
                stream.write(XYZ2, corner() | u64{random(99)} << 32)
                    .write(XYZ2, corner())
                    .write(XYZ2, corner());
                break;
            case 5:
                stream.write(BITBLTBUF, smallBuffer() << 32).write(TRXPOS, area()).write(TRXREG, area());
                stream.tag(GifStream::image, 2, 0, 0).quadword(generator(), 1).quadword(2, generator());
                break;
            case 6:
                stream.write(BITBLTBUF, smallBuffer() | smallBuffer() << 32).write(TRXPOS, area());
                stream.write(TRXREG, (1 + random(20)) | u64{1 + random(9)} << 32).write(TRXDIR, 2);
                break;
            case 7:
                presentPicture();
                ASSERT_TRUE(bytesOf(*surface) == expected) << "case " << number << ", step " << step;
                break;
            case 8:
                if (random(8) == 0) {
                    DXclearScr();
                    expected = bytesOf(*surface);
                }
                break;
            default:
                GSvsync();
                GsHost.ScrBlit(expected.data(), &localWord(Gs.gsdspfb().fbp), GsHost.picture.rectangle,
                               surface->pitch);
                break;
            }
            stream.send();
        }
        DXclose();
    }
}

TEST_F(Display, OpensOnceAndLetsGoOfTheSurface) {
    const Surface surface = makeSurface(8, 8, 32);
    EXPECT_EQ(outputOf(DXopen), "DXopenError : Create buffer\n");  // without a surface and a configuration
    GSvsync();
    DXclearScr();
    DXclose();
    GSclose();

    open(surface.get(), 8, 8, 32, 1);
    EXPECT_EQ(GsHost.ScrBlit, ScrBlit32S);
    const auto grey = bytesOf(*surface);
    GsHost.conf.bpp = 16;
    GSvsync();
    presentPicture();
    const auto picture = bytesOf(*surface);
    EXPECT_NE(picture, grey);
    EXPECT_EQ(DXopen(), 0);  // open already
    EXPECT_EQ(bytesOf(*surface), picture);
    EXPECT_EQ(GsHost.depth, 32);
    DXclearScr();
    EXPECT_EQ(bytesOf(*surface), grey);
    EXPECT_EQ(DXswitchScrMode(), -1);  // there is no full-screen mode
    EXPECT_EQ(GsHost.DXinit, 0);
    EXPECT_EQ(DXopen(), -1);
    EXPECT_EQ(GsHost.buffer, nullptr);
}

TEST_F(Display, ConfigurationIsReadAndSaved) {
    directory.write("tarn.ini",
                    "[General]\nElf = some/guest.elf\n[Video]\nWidth = 0x280\nBpp = 16\nStretch = 0\n");
    GsHost.conf.fullscreen = 1;
    const Surface surface = makeSurface(4, 4, 16);
    EXPECT_EQ(GSopen(surface.get(), "ignored"), 0);
    EXPECT_STREQ(Settings.ElfToExecute, "some/guest.elf");
    EXPECT_EQ(GsHost.ScrBlit, ScrBlit16);
    setenv("HOME", std::filesystem::current_path().c_str(), 1);
    SaveConfig();
    SaveConfig();  // the directory is there now
    const std::array<s32, 7> words{640, 240, 16, 0, 0, 0, 0};
    EXPECT_EQ(RunDirectory::read(".PS2E/Gravelx.cfg"),
              std::string(reinterpret_cast<const char*>(words.data()), sizeof words));

    directory.write("tarn.ini", "[Other]\nkey = 1\n");
    GSconfigure();
    EXPECT_STREQ(Settings.ElfToExecute, "");
    EXPECT_EQ(GsHost.conf.width, 320);
    EXPECT_EQ(GsHost.conf.bpp, 32);
    EXPECT_EQ(GsHost.conf.stretch, 1);

    std::filesystem::remove("tarn.ini");
    testing::internal::CaptureStderr();
    GSconfigure();
    EXPECT_TRUE(testing::internal::GetCapturedStderr().ends_with("cannot parse file [./tarn.ini]"));
    EXPECT_EQ(GsHost.conf.width, 0);
    EXPECT_EQ(GsHost.conf.stretch, 0);
}

TEST_F(Display, SnapshotsAreNumberedBitmaps) {
    for (const auto& [field, rows] : {std::pair{10u, 1638u}, {63u, 260u}, {0u, 0u}}) {
        show(7, field, 3, 4, 640, 448);
        const u16 width = static_cast<u16>(field * 64), height = static_cast<u16>(rows);
        const u32 size = width * rows * 3 + 56;
        const u16 low = static_cast<u16>(size), high = static_cast<u16>(size >> 16), type = 'B' | 'M' << 8;
        const u16 header[] = {type, low, high, 0, 0, 54, 0, 40,   0, width, 0, height,
                              0,    1,   24,   0, 0, 0,  0, 2834, 0, 2834,  0};
        std::string expected(size, '\0');
        std::memcpy(expected.data(), header, sizeof header);
        for (u32 i = 0; i < width * rows; ++i) {  // from the start of memory, the bottom row first
            const u32 p = pattern((rows - 1 - i / width) * width + i % width);
            std::memcpy(&expected[54 + i * 3], hostBytes(p, 24).first.data(), 3);
        }
        EXPECT_TRUE(GSmakeSnapshot(""));
        EXPECT_TRUE(RunDirectory::read("snap001.bmp") == expected);
        std::filesystem::remove("snap001.bmp");
    }
    for (const char* name : {"xsnap001.bmp", "xsnap002.bmp", "xsnap003.bmp"}) {
        EXPECT_TRUE(GSmakeSnapshot("x"));
        EXPECT_TRUE(std::filesystem::exists(name)) << name;
    }
    std::filesystem::remove("xsnap001.bmp");
    EXPECT_TRUE(GSmakeSnapshot("x"));
    EXPECT_TRUE(std::filesystem::exists("xsnap001.bmp")) << "the lowest free number";
    EXPECT_FALSE(GSmakeSnapshot("missing/"));
}

}  // namespace
}  // namespace tarn::test
