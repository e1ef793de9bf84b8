// Font images through LoadFont, and what is drawn with them. The first byte of an input chooses: a file as
// it is, or a BMP header whose fields the input changes in front of its pixels.
#include "gui/font_extras.h"
#include "support.h"

#include <vector>

namespace tarn {
namespace {

constexpr u32 dimensions[] = {0, 1, 2, 3, 64, 100, 1000, 0x7FFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
constexpr u32 depths[] = {1, 4, 8, 16, 24, 32, 0, 2, 15, 48, 0xFFFF};
constexpr u32 headerSizes[] = {40, 12, 0, 13, 39, 64, 108, 124, 0x7FFFFFFF, 0xFFFFFFFF};
constexpr u32 compressions[] = {0, 1, 2, 3, 4, 0xFFFFFFFF};
constexpr u32 masks[] = {0xFF, 0xFF00, 0xFF0000, 0xFF000000, 0x1F, 0x7E0, 0xF800, 0x10, 0x300};
constexpr u32 paletteCounts[] = {0, 1, 2, 16, 255, 256, 257, 0x10000, 0xFFFFFFFF};

template <typename T>
void put(std::vector<u8>& file, T value) {
    const auto* bytes = reinterpret_cast<const u8*>(&value);
    file.insert(file.end(), bytes, bytes + sizeof value);
}

std::vector<u8> buildBmp(fuzz::Input& input) {
    std::vector<u8> file{'B', 'M'};
    put<u64>(file, input.take<u8>());
    const u8 pixelOffset = input.take<u8>();
    put<u32>(file, pixelOffset < 0xF0 ? 54 + pixelOffset % 64 : input.take<u32>());
    const u32 headerSize = input.pick(headerSizes);
    const u32 width = input.pick(dimensions);
    const u32 height = input.pick(dimensions);
    const u16 depth = static_cast<u16>(input.pick(depths));
    put<u32>(file, headerSize);
    if (headerSize == 12) {
        put<u16>(file, static_cast<u16>(width));
        put<u16>(file, static_cast<u16>(height));
        put<u16>(file, 1);
        put<u16>(file, depth);
    } else {
        put<u32>(file, width);
        put<u32>(file, height);
        put<u16>(file, 1);
        put<u16>(file, depth);
        put<u32>(file, input.pick(compressions));
        put<u32>(file, input.take<u16>());
        put<u64>(file, 0);
        put<u32>(file, input.pick(paletteCounts));
        put<u32>(file, 0);
    }
    if (depth == 16 || depth == 32) {
        for (int channel = 0; channel < 3; ++channel) {
            put<u32>(file, input.pick(masks));
        }
    }
    const std::size_t wanted = input.take<u16>() & 0x3FFF;
    const std::span<const u8> pixels = input.remaining();
    for (std::size_t i = 0; i < wanted && !pixels.empty(); ++i) {
        file.push_back(pixels[i % pixels.size()]);
    }
    return file;
}

void draw(const BitmapFont* font) {
    static SDL_Surface* const surface =
        SDL_CreateRGBSurface(SDL_SWSURFACE, 97, 31, 32, 0xFF, 0xFF00, 0xFF0000, 0);
    std::string text;
    for (int code = 255; code > 0; --code) {
        text += static_cast<char>(code);
    }
    PutStringFont(surface, font, -5, -3, text);
    CenteredPutStringFont(surface, font, 20, text);
    RightPutStringFont(surface, font, 28, "right");
    JustifiedPutStringFont(surface, font, 5, "a b  c");
    PrintStringFont(surface, font, 3, 3, "%s %d", text.c_str(), 7);
    if (const FontPtr coloured = SetFontColor(font, 255, 128, 0)) {
        PutStringFont(surface, coloured.get(), 0, 0, "coloured");
    }
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    static const fuzz::MemoryFile file;
    fuzz::Input input({data, size});
    file.assign(input.take<u8>() < 64 ? input.remaining() : buildBmp(input));
    if (const FontPtr font = LoadFont(file.path())) {
        fuzz::require(font->surface != nullptr && GetCurrentFont() == font.get(), "a loaded font is whole");
        // An image of millions of pixels is legitimate, and slow to recolour.
        if (font->surface->w * font->surface->h < 0x10000) {
            draw(font.get());
        }
    }
    return 0;
}
