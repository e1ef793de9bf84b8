// Tests image transfers against plain per-pixel models.
#include "gs/transfer.h"

#include "gs/local_memory.h"
#include "support/gs_machine.h"

#include <algorithm>
#include <cstring>

namespace tarn::test {
namespace {

class Transfer : public GsMachine {
  protected:
    Transfer() {
        fillLocalMemory();
        expected.assign(Gs.vRamUL(), Gs.vRamUL() + localMemoryWords);
    }

    bool isAsExpected() const { return std::memcmp(Gs.vRamUL(), expected.data(), localMemoryBytes) == 0; }

    s32 pick(std::initializer_list<s32> values) {
        return values.begin()[random(static_cast<u32>(values.size()))];
    }

    GsTransferBuf randomBuffer() {
        const u32 bw = 64 * static_cast<u32>(pick({0, 1, 2, 10, 63}));
        return {.bp = 64 * random(0x4000), .bw = bw, .maxRows = maxRowsOf(bw), .psm = random(64)};
    }

    std::vector<u32> expected;  ///< what a plain model holds
};

TEST_F(Transfer, BlocksAreTheSamePixels) {
    std::vector<u32> data(400);
    for (u32 number = 0; number < 300; ++number) {
        generator.seed(number);
        Gs.dstbuf = randomBuffer();
        Gs.imagePtr = Gs.dstbuf.bp;
        const auto dsax = static_cast<u32>(pick({0, 5, 62, 2047}));
        const auto dsay = static_cast<u32>(pick({0, 3, 2047}));
        GSwrite(u64{dsax} << 32 | u64{dsay} << 48, gs_register::TRXPOS);
        Gs.imageW = static_cast<u32>(pick({0, 1, 3, 64, -1, -5, 1 << 30}));
        Gs.imageH = static_cast<u32>(pick({0, 1, 3, 64, -1, 1 << 30}));
        Gs.imageX = pick({Gs.imageX, Gs.imageX, 0, -2, 0x7FFFFFF0, -0x7FFFFFFF});
        Gs.imageY = pick({Gs.imageY, Gs.imageY, 0, -1, 0x7FFFFFFF});
        for (u32& pixel : data) {
            pixel = random(~0u);
        }

        u32 x = static_cast<u32>(Gs.imageX);
        u32 y = static_cast<u32>(Gs.imageY);
        for (const u32 pixel : data) {
            if (x < Gs.dstbuf.bw && y < Gs.dstbuf.maxRows) {
                expected[(Gs.dstbuf.bp + y * Gs.dstbuf.bw + x) % localMemoryWords] = pixel;
            }
            if (++x == dsax + Gs.imageW) {
                x = dsax;
                if (++y == dsay + Gs.imageH) {
                    y = dsay;
                }
            }
        }
        std::for_each_n(data.begin(), 4, TransferPixel);
        FBwriteBlock(reinterpret_cast<const u8*>(data.data() + 4), static_cast<u32>(data.size() / 4 - 1));
        ASSERT_TRUE(isAsExpected()) << "case " << number;
        ASSERT_TRUE(static_cast<u32>(Gs.imageX) == x && static_cast<u32>(Gs.imageY) == y) << number;
    }
}

/// The rectangle copy as told: bounds, clipping of each side, rows downwards, pixels one by one.
void moveImage(std::vector<u32>& words) {
    const auto signedWord = [](u32 value) { return s64{static_cast<s32>(value)}; };
    const s64 w = signedWord(Gs.imageW), h = signedWord(Gs.imageH);
    s64 dx = signedWord(Gs.trxpos.dsax), dy = signedWord(Gs.trxpos.dsay);
    s64 sx = signedWord(Gs.trxpos.ssax), sy = signedWord(Gs.trxpos.ssay);
    const s64 dw = Gs.dstbuf.bw, dh = Gs.dstbuf.maxRows, sw = Gs.srcbuf.bw, sh = Gs.srcbuf.maxRows;
    if (dx >= dw || dy >= dh || sx >= sw || sy >= sh || dx + w < 0 || dy + h < 0 || sx + w < 0 ||
        sy + h < 0) {
        return;
    }
    const s64 width = std::min(
        {dx < 0 ? w + dx : w, sx < 0 ? w + sx : w, dw - std::max<s64>(dx, 0), sw - std::max<s64>(sx, 0)});
    const s64 height = std::min(
        {dy < 0 ? h + dy : h, sy < 0 ? h + sy : h, dh - std::max<s64>(dy, 0), sh - std::max<s64>(sy, 0)});
    dx = std::max<s64>(dx, 0), dy = std::max<s64>(dy, 0), sx = std::max<s64>(sx, 0),
    sy = std::max<s64>(sy, 0);
    for (s64 row = 0; row < height; ++row) {
        for (s64 i = 0; i < width; ++i) {
            const s64 column = sx >= dx ? i : width - 1 - i;
            words[static_cast<u64>(Gs.dstbuf.bp + (dy + row) * dw + dx + column) % localMemoryWords] =
                words[static_cast<u64>(Gs.srcbuf.bp + (sy + row) * sw + sx + column) % localMemoryWords];
        }
    }
}

TEST_F(Transfer, MovesAreTheSamePixels) {
    for (u32 number = 0; number < 400; ++number) {
        generator.seed(number);
        Gs.srcbuf = randomBuffer();
        Gs.dstbuf = random(2) != 0 ? Gs.srcbuf : randomBuffer();
        for (u32* position : {&Gs.trxpos.dsax, &Gs.trxpos.dsay, &Gs.trxpos.ssax, &Gs.trxpos.ssay}) {
            *position = static_cast<u32>(pick({0, 1, 4, 60, 600, 2047, -2}));
        }
        Gs.imageW = static_cast<u32>(pick({0, 1, 10, 100, 700, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1}));
        Gs.imageH = static_cast<u32>(pick({0, 1, 10, 100, 0x7FFFFFFF, -5}));
        moveImage(expected);
        FBmoveImage();
        ASSERT_TRUE(isAsExpected()) << "case " << number;
    }
}

}  // namespace
}  // namespace tarn::test
