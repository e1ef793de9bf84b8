// The picture of the last vertical blank: when it is noted, converted and overwritten.
#include "gs/display.h"
#include "gs/primitives.h"

#include <SDL.h>
#include <algorithm>
#include <utility>

namespace tarn {
namespace {

/// The words that a conversion may read. Stretching samples one column further right, and reads a word even
/// of an empty rectangle.
WordRange wordsOf(const GsPicture& picture) {
    const GsRectangle& rectangle = picture.rectangle;
    const s64 rows = std::max(rectangle.h, 1) - 1;
    return wordRange(picture.base + static_cast<u32>(rectangle.y) * picture.stride +
                         static_cast<u32>(rectangle.x),
                     rows * picture.stride + rectangle.w + 2);
}

/// The rows of the frame or depth buffer at `base` that the current context can draw to. With frame width 0
/// vertices end up in column -1, and a flat triangle extends one row below the scissor.
WordRange drawableWords(u32 base) {
    const GsScissor& scissor = Gs.scissor();
    const s64 stride = Gs.gsfb().fbw;
    const s64 bottom = s64{scissor.scay1} + 1;
    const s64 top = std::min(
        {s64{scissor.scay0}, s64{scissor.scay1}, s64{Gs.gsfb().maxRows} - 1, s64{lastUntexturedRow}});
    return wordRange(base + static_cast<u32>(top * stride - 1), (bottom - top + 1) * stride + 2);
}

void convert() {
    const GsPicture& picture = GsHost.picture;
    SDL_Surface* surface = GsHost.buffer;
    GsHost.ScrBlit(static_cast<u8*>(surface->pixels), &localWord(picture.base), picture.rectangle,
                   surface->pitch);
    GsHost.pictureDue = false;
}

}  // namespace

void DXupdate() {
    const SDL_Surface* buffer = GsHost.buffer;
    if (Gs.vRam == nullptr || buffer == nullptr || GsHost.ScrBlit == nullptr ||
        buffer->format->BytesPerPixel != GsHost.pixelBytes) {
        return;
    }
    const GsDispFb& source = Gs.gsdspfb();
    const GsPicture next{
        .base = source.fbp,
        .stride = source.fbw,
        .rectangle = {.x = static_cast<s32>(source.dbx + Gs.gsmode().x),
                      .y = static_cast<s32>(source.dby + Gs.gsmode().y),
                      .w = static_cast<s32>(Gs.gsmode().width),
                      .h = static_cast<s32>(Gs.gsmode().height)},
    };
    if (GsHost.pictureIntact && next == GsHost.picture) {
        return;
    }
    // A picture of the same size covers everything of the previous one that has not been converted.
    if (next.rectangle.w != GsHost.picture.rectangle.w || next.rectangle.h != GsHost.picture.rectangle.h) {
        presentPicture();
    }
    GsHost.picture = next;
    GsHost.pictureWords = wordsOf(next);
    GsHost.pictureDue = true;
    GsHost.pictureIntact = true;
    GsHost.pictureNew = true;
}

void presentPicture() {
    if (GsHost.pictureDue) {
        convert();
    }
}

bool takeNewPicture() { return std::exchange(GsHost.pictureNew, false); }

void forgetPicture() {
    presentPicture();
    GsHost.pictureIntact = false;
}

void beforeDrawing() {
    beforeWrite(drawableWords(Gs.gsfb().fbp));
    if (Gs.test().zte == 1) {
        beforeWrite(drawableWords(Gs.zbuf().zbp));
    }
}

}  // namespace tarn
