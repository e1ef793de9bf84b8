// Pictures of the buffers that a command uses.
#include "recording/buffer_picture.h"

#include "gs/local_memory.h"
#include "gs/palette.h"
#include "machine/machine.h"
#include "recording/player.h"

#include <algorithm>

namespace tarn::recording {
namespace {

/// A picture whose pixels are given by colourOf(x, y).
template <typename ColourOf>
Picture paint(u32 width, u32 height, ColourOf colourOf) {
    Picture picture{width, height, {}};
    picture.pixels.reserve(std::size_t{width} * height * 3);
    for (u32 y = 0; y < height; ++y) {
        for (u32 x = 0; x < width; ++x) {
            const u32 word = colourOf(x, y);
            picture.pixels.insert(picture.pixels.end(), {static_cast<u8>(word), static_cast<u8>(word >> 8),
                                                         static_cast<u8>(word >> 16)});
        }
    }
    return picture;
}

Picture framePicture() {
    const u32 width = Gs.gsfb().fbw;
    return paint(width, shownRows(), [&](u32 x, u32 y) { return fBufUL(y * width + x); });
}

Picture depthPicture() {
    const u32 width = Gs.gsfb().fbw;
    const u32 rows = shownRows();
    u32 lowest = ~u32{0};
    u32 highest = 0;
    for (u32 i = 0; i < width * rows; ++i) {
        lowest = std::min(lowest, zBufUL(i));
        highest = std::max(highest, zBufUL(i));
    }
    const u64 extent = std::max<u64>(u64{highest} - lowest, 1);
    return paint(width, rows, [&](u32 x, u32 y) {
        return static_cast<u32>(u64{zBufUL(y * width + x) - lowest} * 255 / extent) * 0x010101;
    });
}

Picture texturePicture(bool expandsIndexes) {
    const GsTex0& tex0 = Gs.tex0();
    if (!expandsIndexes || !isIndexed(tex0.psm)) {
        return paint(tex0.tw, tex0.th, [&](u32 x, u32 y) { return localWord(tex0.tbp0 + y * tex0.tbw + x); });
    }
    const Palette palette = loadPalette(tex0.psm);
    return paint(tex0.tw, tex0.th, [&](u32 x, u32 y) { return palette[textureIndex(x, y)]; });
}

}  // namespace

u32 shownRows() {
    const u32 width = Gs.gsfb().fbw;
    u32 rows = Gs.scissor().scay1 + 1;
    if (Gs.gsdspfb().fbp == Gs.gsfb().fbp) {
        rows = std::max(rows, Gs.gsmode().height);
    }
    constexpr u32 mostRows = 1024;
    return std::min({rows, maxRowsOf(width), mostRows});
}

Picture pictureOf(const Command& command, BufferKind buffer) {
    switch (buffer) {
    case BufferKind::Frame:
        return framePicture();
    case BufferKind::Depth:
        return depthPicture();
    default:
        return texturePicture(command.kind != CommandKind::Triangle);
    }
}

std::string takePicture(Reader& recording, std::optional<u64> at, BufferKind buffer, Picture& picture) {
    class GoTo : public Visitor {
      public:
        explicit GoTo(std::optional<u64> number) : last(number) {}
        bool after(const Command& command) override {
            reached = command;
            return command.number != last;
        }
        Command reached;

      private:
        std::optional<u64> last;
    };
    Player player(recording);
    if (!player.error().empty()) {
        return player.error();
    }
    GoTo goTo(at);
    player.play(goTo);
    if (at && goTo.reached.number != *at) {
        return "it has " + std::to_string(goTo.reached.number) + " commands, and none of number " +
               std::to_string(*at);
    }
    picture = pictureOf(goTo.reached, buffer);
    return {};
}

}  // namespace tarn::recording
