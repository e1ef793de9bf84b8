// Image transfers: from the GIF into local memory, and within local memory.
#include "gs/transfer.h"

#include "gs/display.h"
#include "gs/local_memory.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn {
namespace {

/// Stores those of `count` pixels, from the cursor to the right, that are inside the destination.
void storeRow(const u8* data, u32 count) {
    const GsTransferBuf& buffer = Gs.dstbuf;
    if (Gs.imageY < 0 || static_cast<u32>(Gs.imageY) >= buffer.maxRows) {
        return;
    }
    const s64 begin = std::max<s64>(Gs.imageX, 0);
    const s64 end = std::min<s64>(s64{Gs.imageX} + count, buffer.bw);
    if (begin < end) {
        const u8* visible = data + (begin - Gs.imageX) * static_cast<s64>(sizeof(u32));
        const u32 index = Gs.imagePtr + static_cast<u32>(Gs.imageY) * buffer.bw + static_cast<u32>(begin);
        beforeWrite(wordRange(index, end - begin));
        forLocalRuns(index, static_cast<u32>(end - begin), [&](u32* words, u32 first, u32 run) {
            std::memcpy(words, visible + first * sizeof(u32), run * sizeof(u32));
        });
    }
}

/// TransferPixel for `count` pixels at once, row by row.
void transferPixels(const u8* data, u32 count) {
    // Intentional: the row ends only where the cursor equals its end; a cursor beyond the end wraps around
    // first.
    const u32 endX = Gs.trxpos.dsax + Gs.imageW;
    const u32 endY = Gs.trxpos.dsay + Gs.imageH;
    while (count > 0) {
        const u32 x = static_cast<u32>(Gs.imageX);
        const u32 toEnd = endX - x;
        const u32 run = toEnd == 0 ? count : std::min(count, toEnd);
        storeRow(data, run);
        data += run * sizeof(u32);
        count -= run;
        if (run != toEnd) {
            Gs.imageX = static_cast<s32>(x + run);
            continue;
        }
        const u32 y = static_cast<u32>(Gs.imageY) + 1;
        Gs.imageX = static_cast<s32>(Gs.trxpos.dsax);
        Gs.imageY = static_cast<s32>(y == endY ? Gs.trxpos.dsay : y);
    }
}

/// One side of a copy. 64 bits, because the guest's sizes can be any 32-bit numbers.
struct CopySide {
    s64 x;
    s64 y;
    s64 width;
    s64 height;

    void clip(const GsTransferBuf& buffer) {
        if (x < 0) {
            width += x;
            x = 0;
        }
        if (y < 0) {
            height += y;
            y = 0;
        }
        width = std::min(width, s64{buffer.bw} - x);
        height = std::min(height, s64{buffer.maxRows} - y);
    }
};

/// Copies `width` words one by one in the given direction, which determines the result of overlapping copies.
void copyRow(u32 destination, u32 source, u32 width, bool leftToRight) {
    destination %= localMemoryWords;
    source %= localMemoryWords;
    const bool wraps = destination + width > localMemoryWords || source + width > localMemoryWords;
    const u32 distance = leftToRight ? destination - source : source - destination;
    if (!wraps && distance >= width) {  // no word is overwritten before it is read
        std::memmove(Gs.vRamUL() + destination, Gs.vRamUL() + source, width * sizeof(u32));
        return;
    }
    for (u32 i = 0; i < width; ++i) {
        const u32 column = leftToRight ? i : width - 1 - i;
        localWord(destination + column) = localWord(source + column);
    }
}

}  // namespace

void TransferPixel(u32 pixel) {
    std::array<u8, sizeof pixel> data{};
    std::memcpy(data.data(), &pixel, sizeof pixel);
    transferPixels(data.data(), 1);
}

void FBwrite(const u8* quadword) { FBwriteBlock(quadword, 1); }

void FBwriteBlock(const u8* data, u32 quadwords) { transferPixels(data, quadwords * 4); }

void FBwrite24_3(const u8* group) {
    constexpr u32 count = 16;
    std::array<u8, count * sizeof(u32)> pixels{};
    for (u32 i = 0; i < count; ++i) {
        std::memcpy(&pixels[i * 4], group + std::size_t{i} * 3, 3);
    }
    transferPixels(pixels.data(), count);
}

void FBmoveImage() {
    const GsTrxPos& position = Gs.trxpos;
    const s64 w = static_cast<s32>(Gs.imageW);
    const s64 h = static_cast<s32>(Gs.imageH);
    CopySide to{static_cast<s32>(position.dsax), static_cast<s32>(position.dsay), w, h};
    CopySide from{static_cast<s32>(position.ssax), static_cast<s32>(position.ssay), w, h};
    if (to.x >= Gs.dstbuf.bw || to.y >= Gs.dstbuf.maxRows || from.x >= Gs.srcbuf.bw ||
        from.y >= Gs.srcbuf.maxRows || to.x + w < 0 || to.y + h < 0 || from.x + w < 0 || from.y + h < 0) {
        return;
    }
    to.clip(Gs.dstbuf);
    from.clip(Gs.srcbuf);
    const s64 width = std::min(to.width, from.width);
    const s64 height = std::min(to.height, from.height);
    if (width <= 0) {
        return;
    }
    countWork(width, height);
    beforeWrite(wordRange(Gs.dstbuf.bp + static_cast<u32>(to.y * Gs.dstbuf.bw + to.x),
                          (height - 1) * Gs.dstbuf.bw + width));
    for (s64 row = 0; row < height; ++row) {
        copyRow(Gs.dstbuf.bp + static_cast<u32>((to.y + row) * Gs.dstbuf.bw + to.x),
                Gs.srcbuf.bp + static_cast<u32>((from.y + row) * Gs.srcbuf.bw + from.x),
                static_cast<u32>(width), from.x >= to.x);
    }
}

}  // namespace tarn
