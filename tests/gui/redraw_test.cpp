// The quick ways of drawing against the plain ones, pixel by pixel: blits against SDL's, an adapted
// font against the one it is made from, the redraw of what has changed against that of everything.
#include "base/diagnostics.h"
#include "gui/blits.h"
#include "gui/screen.h"
#include "surfaces.h"

#include <chrono>
#include <cstdlib>
#include <random>

namespace tarn::test {
namespace {

std::mt19937 generator{1};  // the same cases on every host
int below(int limit) { return static_cast<int>(generator() % static_cast<unsigned>(limit)); }

/// Few values, so that a colour key is found more than once. Rows from `first` on, up to before `end`.
void fillAtRandom(SDL_Surface* surface, int first, int end) {
    u8* bytes = static_cast<u8*>(surface->pixels) + first * surface->pitch;
    std::generate_n(bytes, (end - first) * surface->pitch, [] { return static_cast<u8>(below(3) * 0x7F); });
}

/// Whether two surfaces show the same: alpha is nothing that shows.
bool samePicture(const SDL_Surface* one, const SDL_Surface* other) {
    const u32 colours = one->format->Rmask | one->format->Gmask | one->format->Bmask;
    for (int y = 0; y < one->h; ++y) {
        for (int x = 0; x < one->w; ++x) {
            if (((pixelOf(one, x, y) ^ pixelOf(other, x, y)) & colours) != 0) {
                return false;
            }
        }
    }
    return true;
}

/// SDL's compatibility library, whose blits with a colour key differ, and which drops events that a test
/// sends.
bool isCompatibilityLibrary() { return SDL_Linked_Version()->patch >= 50; }

struct Format {
    int depth;
    u32 red, green, blue, alpha;
};
constexpr Format formats[] = {
    {32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}, {32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000},
    {32, 0xFF0000, 0xFF00, 0xFF, 0},          {32, 0xFF000000, 0xFF0000, 0xFF00, 0},
    {24, 0xFF0000, 0xFF00, 0xFF, 0},          {16, 0xF800, 0x07E0, 0x001F, 0},
};

SurfacePtr makeSurface(int width, int height, const Format& format) {
    SurfacePtr surface(SDL_CreateRGBSurface(SDL_SWSURFACE, width, height, format.depth, format.red,
                                            format.green, format.blue, format.alpha));
    SDL_SetAlpha(surface.get(), 0, SDL_ALPHA_OPAQUE);
    return surface;
}

SDL_Rect anyRectangle(int size) {
    return {static_cast<Sint16>(below(size) - size / 3), static_cast<Sint16>(below(size) - size / 3),
            static_cast<Uint16>(below(size)), static_cast<Uint16>(below(size))};
}

TEST(Redraw, CopiesAndFillsAreSdls) {
    if (isCompatibilityLibrary()) {
        GTEST_SKIP() << "a question for SDL 1.2 itself";
    }
    for (const Format& from : formats) {
        for (const Format& to : formats) {
            const SurfacePtr source = makeSurface(40, 30, from);
            fillAtRandom(source.get(), 0, source->h);
            for (int i = 0; i < 50; ++i) {
                const SurfacePtr quick = makeSurface(37, 33, to), plain = makeSurface(37, 33, to);
                if (below(3) == 0) {
                    SDL_SetColorKey(source.get(), SDL_SRCCOLORKEY,
                                    pixelOf(source.get(), below(40), below(30)));
                } else {
                    SDL_SetColorKey(source.get(), 0, 0);
                }
                if (below(2) == 0) {
                    const SDL_Rect clip{static_cast<Sint16>(below(20)), static_cast<Sint16>(below(20)), 15,
                                        12};
                    SDL_SetClipRect(quick.get(), &clip);
                    SDL_SetClipRect(plain.get(), &clip);
                }
                SDL_Rect part = anyRectangle(50), place = anyRectangle(50), plainPlace = place;
                const SDL_Rect* which = below(3) == 0 ? nullptr : &part;
                SDL_Rect plainPart = part;
                blit(source.get(), which, quick.get(), &place);
                SDL_UpperBlit(source.get(), which == nullptr ? nullptr : &plainPart, plain.get(),
                              &plainPlace);
                ASSERT_TRUE(samePicture(quick.get(), plain.get()));
                ASSERT_EQ(place.w, plainPlace.w);
                ASSERT_EQ(place.h, plainPlace.h);

                SDL_Rect filled = anyRectangle(50);
                const u32 colour = static_cast<u32>(generator());
                std::memcpy(quick->pixels, plain->pixels, static_cast<std::size_t>(plain->h) * plain->pitch);
                fill(quick.get(), filled, colour);
                SDL_FillRect(plain.get(), &filled, colour);
                ASSERT_TRUE(samePicture(quick.get(), plain.get()));
            }
        }
    }
}

TEST(Redraw, ChangesAreToldByTheirRows) {
    const SurfacePtr source = makeSurface(40, 30, formats[0]), window = makeSurface(60, 60, formats[0]);
    std::vector<u8> shown;
    for (const auto& [row, y, h] : {std::tuple{0, 20, 30}, {0, 20, 0}, {29, 49, 1}, {3, 23, 27}}) {
        SDL_Rect place{10, 20, 0, 0};
        u8* pixels = static_cast<u8*>(source->pixels);
        pixels[row * source->pitch] = pixels[29 * source->pitch] = static_cast<u8>(row);
        EXPECT_TRUE(blitChanges(source.get(), window.get(), &place, shown));
        EXPECT_TRUE(place.y == y && place.h == h) << row;
    }
    SDL_Rect place{10, 20, 0, 0};
    EXPECT_TRUE(blitChanges(makeSurface(40, 20, formats[0]).get(), window.get(), &place, shown));
    EXPECT_EQ(place.h, 20) << "all of a picture of another size";
}

TEST(Redraw, AnAdaptedFontLooksTheSame) {
    for (const char* path : {"font_1.bmp", "font_2.bmp"}) {
        const std::string file = std::string(TARN_SOURCE_DIRECTORY "/data/") + path;
        const FontPtr plain = LoadFont(file.c_str()), adapted = LoadFont(file.c_str());
        ASSERT_NE(plain, nullptr);
        const SurfacePtr one = makeSurface(300, 40, formats[0]), other = makeSurface(300, 40, formats[0]);
        AdaptFont(adapted.get(), other.get());
        for (SDL_Surface* surface : {one.get(), other.get()}) {
            SDL_FillRect(surface, nullptr, 0xFF123456);
        }
        for (const auto& [x, y, text] : {std::tuple{2, 2, "!\"#The quick {brown} ~fox"},
                                         {-5, 25, "clipped"},
                                         {270, 10, "clipped"},
                                         {7, 9, "overlapping"}}) {
            EXPECT_EQ(PutStringFont(one.get(), plain.get(), x, y, text),
                      PutStringFont(other.get(), adapted.get(), x, y, text));
            EXPECT_TRUE(samePicture(one.get(), other.get())) << text;
        }
    }
}

/// TarnGUI in a window of SDL's dummy driver.
class Window : public ToolkitTest {
  protected:
    Window() : ToolkitTest(makeSurface(400, 300, formats[0])), picture(makeSurface(120, 90, formats[1])) {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        EXPECT_EQ(SDL_Init(SDL_INIT_VIDEO), 0);
        EXPECT_NE(SDL_SetVideoMode(400, 300, 32, SDL_SWSURFACE), nullptr);
        TarnGUI.ClearScreen = koGUI_ClearScreen;
        TarnGUI.quickPicture = 1;
        TarnGUI.font1 = makeFont(500, 17, steppedGlyphs(94));
        add(PaneKind::Image, 10, 10, 122, 112).image = picture.get();
        add(PaneKind::Text, 10, 150, 150, 90);
        add(PaneKind::Text, 180, 20, 150, 90);
    }
    ~Window() override { SDL_Quit(); }

    static void turn(int count = 1) {
        static int left;
        left = count;
        TarnGUI.running = 1;
        TarnGUI.IdleProc = [] { TarnGUI.running = --left == 0 ? 2 : 1; };
        koGUI_MainLoop(&TarnGUI);
    }

    /// What the window shows after everything has been drawn anew.
    static std::vector<u8> drawnAnew() {
        SDL_Event exposed{};
        exposed.type = SDL_VIDEOEXPOSE;
        SDL_PushEvent(&exposed);
        turn(10);
        return shown();
    }
    static std::vector<u8> shown() {
        const SDL_Surface* video = SDL_GetVideoSurface();
        const auto* bytes = static_cast<const u8*>(video->pixels);
        return {bytes, bytes + static_cast<std::size_t>(video->h) * video->pitch};
    }

    SurfacePtr picture;
};

TEST_F(Window, RedrawingWhatHasChangedIsRedrawingEverything) {
    turn();
    for (int i = 0; i < 300; ++i) {
        if (i == 150) {  // from the window's format to one that is converted twice
            picture = makeSurface(120, 90, formats[0]);
            TarnGUI.widgets[0].image = picture.get();
            TarnGUI.widgets[0].dirty = 1;
        }
        koGUIwidget& pane = TarnGUI.widgets[static_cast<std::size_t>(below(3))];
        switch (below(8)) {
        case 0:  // dragged
            pane.x = std::max(0, pane.x + below(41) - 20);
            pane.y = std::max(0, pane.y + below(41) - 20);
            pane.dirty = 1;
            break;
        case 1:  // shaded or opened, which marks nothing
            pane.state = pane.state == PaneState::Open ? PaneState::Shaded : PaneState::Open;
            std::swap(pane.h, pane.savedH = pane.savedH != 0 ? pane.savedH : 22);
            TarnGUI.widgets[0].dirty = 1;
            break;
        case 2:
        case 3: {
            const std::string text = "text that may run out of its pane, far to the right of it";
            koGUIwidget_addText(&TarnGUI.widgets[static_cast<std::size_t>(1 + i % 2)],
                                text.substr(0, generator() % 60).c_str());
            break;
        }
        case 4:
            pane.clipped = !pane.clipped;
            pane.w = static_cast<u32>(50 + below(100));
            pane.dirty = 1;
            break;
        default:
            break;
        }
        if (below(3) != 0) {
            if (below(4) == 0) {  // another picture for a moment, of which the quick way must not know
                const auto size = static_cast<std::size_t>(picture->h) * picture->pitch;
                const std::string former(static_cast<const char*>(picture->pixels), size);
                TarnGUI.widgets[0].dirty = 1;
                turn();
                fillAtRandom(picture.get(), 0, picture->h);
                if (below(2) == 0) {
                    drawnAnew();
                } else {
                    TarnGUI.widgets[0].dirty = TarnGUI.widgets[1].dirty = 1;
                    turn();
                }
                std::memcpy(picture->pixels, former.data(), size);
            }
            const int first = below(picture->h);
            fillAtRandom(picture.get(), first, first + below(picture->h + 1 - first));
            TarnGUI.widgets[0].dirty = 1;
        }
        turn();
        const std::vector<u8> quick = shown();
        ASSERT_EQ(TarnGUI.widgets[0].dirty, 0);
        ASSERT_EQ(quick, drawnAnew()) << i;
    }
}

TEST_F(Window, TextBelowItsPaneStaysOnThePicture) {
    TarnGUI.font2 = makeFont(500, 24, steppedGlyphs(94));
    TarnGUI.widgets[0].y = 130;
    TarnGUI.widgets[1].y = 0;
    for (int line = 0; line < 6; ++line) {
        koGUIwidget_addText(&TarnGUI.widgets[1], "from 22 down to 166, in a pane that ends at 90");
    }
    turn();
    fillAtRandom(picture.get(), 0, picture->h);
    TarnGUI.widgets[0].dirty = 1;
    turn();
    const std::vector<u8> quick = shown();
    EXPECT_EQ(quick, drawnAnew());
}

TEST_F(Window, PicturesInQuickSuccessionAreShownNowAndThenAndTheLastForSure) {
    using Clock = std::chrono::steady_clock;
    static Clock::time_point start;
    static int drawn, waiting;
    start = Clock::now();
    drawn = waiting = 0;
    TarnGUI.running = 1;
    TarnGUI.IdleProc = [] {
        ++(TarnGUI.widgets[0].dirty == 0 ? drawn : waiting);
        TarnGUI.widgets[0].dirty = 1;
        TarnGUI.running = Clock::now() - start < std::chrono::milliseconds(20) ? 1 : 2;
    };
    koGUI_MainLoop(&TarnGUI);
    EXPECT_LE(drawn, (Clock::now() - start) / std::chrono::milliseconds(1) + 1);
    EXPECT_TRUE(drawn > 0 && waiting > 0);
    fillAtRandom(picture.get(), 0, picture->h);
    TarnGUI.widgets[0].dirty = TarnGUI.running = 1;
    TarnGUI.IdleProc = [] { TarnGUI.running = TarnGUI.widgets[0].dirty; };
    koGUI_MainLoop(&TarnGUI);
    const std::vector<u8> quick = shown();
    EXPECT_EQ(quick, drawnAnew());
}

TEST_F(Window, HasNoHolesWhereOthersLayOverIt) {
    if (isCompatibilityLibrary()) {
        GTEST_SKIP() << "the tests of the window send the event";
    }
    turn();
    const std::vector<u8> before = shown();
    SDL_FillRect(SDL_GetVideoSurface(), nullptr, 0x123456);
    EXPECT_EQ(drawnAnew(), before);
}

}  // namespace
}  // namespace tarn::test
