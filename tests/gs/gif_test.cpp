// Tests the GIF parser: the three forms of data, streams cut anywhere, and the bounds of a walk.
#include "gs/interface_extras.h"
#include "gs/local_memory.h"
#include "machine/machine.h"
#include "support/gs_machine.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace tarn::test {
namespace {

using namespace gs_register;
constexpr u32 marker = 0x00ABCDEF;

class Gif : public GsMachine {
  protected:
    /// Sends the stream and a packet behind it; true when that packet was understood as one.
    static bool endsCleanly(GifStream stream) {
        Gs.fogcol = 0;
        stream.write(FOGCOL, marker).send();
        return Gs.fogcol == marker;
    }

    u64 anyValue() { return u64{generator()} << 32 | generator(); }

    /// A value for a register that keeps drawing small, and images from 24 bits, whose groups do mind cuts.
    u64 quickValue(u32 address) {
        if (address == TRXREG || address == SCISSOR_1 || address == SCISSOR_2) {
            return (anyValue() & 0x003F003F000F000F) | 0x00300000;
        }
        const bool buffer = address == FRAME_1 || address == FRAME_2 || address == BITBLTBUF;
        return buffer ? (anyValue() & 0x0001FFFF0001FFFF) | 0x10000 : anyValue();
    }

    /// Packets of every form that set registers, draw, upload and move.
    GifStream randomStream() {
        GifStream stream;
        for (const u32 address : {FRAME_1, FRAME_2, SCISSOR_1, SCISSOR_2, BITBLTBUF, TRXREG}) {
            stream.write(address, quickValue(address));
        }
        for (u32 packet = 0; packet < 80; ++packet) {
            const auto form = static_cast<GifStream::Form>(random(4));
            const u32 nloop = random(5);
            const u32 nreg = 1 + random(16);
            const bool addressed = form == GifStream::packed && random(2) != 0;
            const u64 registers = addressed ? ~u64{0} / 15 * 0xE : anyValue() & ~u64{0} / 15 * 7;  // drawing
            stream.tag(form, nloop, nreg, registers, random(2) != 0 ? GifStream::pre(random(0x800)) : 0);
            const u32 words = form == GifStream::packed ? 2 * nloop * nreg : nloop * nreg;
            for (u32 i = 0; i < (form >= GifStream::image ? nloop : (words + 1) / 2); ++i) {
                const u32 address = random(0x56);
                stream.quadword(quickValue(address), addressed ? address : anyValue());
            }
        }
        return stream;
    }
};

TEST_F(Gif, FormsOfTheSameRegistersAgree) {
    constexpr u64 pendingQ = u64{0x3F800000} << 32;
    const struct {
        u64 descriptor, low, high;
        std::vector<std::pair<u32, u64>> writes;  // address and value
    } cases[] = {
        {0x0, ~u64{0} << 32 | 0x3C, ~u64{0}, {{PRIM, 0x3C}}},
        {0x1, 0xAAAAAA02'BBBBBB01, 0xCCCCCC04'DDDDDD03, {{RGBAQ, pendingQ | 0x04030201}}},
        {0x2, 0x40000000'3F000000, ~u64{0} << 31, {{ST, 0x40000000'3F000000}, {RGBAQ, 0x80000000'11223344}}},
        {0x3, 0xFFFF8120'FFFF8340, ~u64{0}, {{UV, 0x01200340}}},
        {0x4, 0xFFFF0120'FFFF0340, 0xFFFF7A00'A1234560, {{XYZF2, 0x7A123456'01200340}}},
        {0x4, 0x00000120'00000340, 0x00008A00'01234560, {{XYZF3, 0x8A123456'01200340}}},
        {0x5, 0x00000120'00000340, 0xFFFF7FFF'FEDCBA98, {{XYZ2, 0xFEDCBA98'01200340}}},
        {0x5, 0x00000120'00000340, 0x00008000'FEDCBA98, {{XYZ3, 0xFEDCBA98'01200340}}},
        {0xE, 0x12345678'9ABCDEF0, 0xFFFFFFFF'FFFFFF0A, {{FOG, 0x12345678'9ABCDEF0}}},
        // clang-format off
        {0x6, ~u64{0}, ~u64{0}, {}}, {0x8, ~u64{0}, ~u64{0}, {}},  // TEX0, CLAMP, FOG, XYZF3, XYZ3 and NOP
        {0xA, ~u64{0}, ~u64{0}, {}}, {0xC, ~u64{0}, ~u64{0}, {}},  // do nothing
        {0xD, ~u64{0}, ~u64{0}, {}}, {0xF, ~u64{0}, ~u64{0}, {}},
        // clang-format on
    };
    const auto imageAfter = [](auto send) {
        restart();
        GSwrite(u64{1} << 16, FRAME_1);  // 64 pixels wide, open everywhere, for a point
        GSwrite(u64{63} << 16 | u64{63} << 48, SCISSOR_1);
        GSwrite(0, PRIM);
        GSwrite(pendingQ | 0x11223344, RGBAQ);
        Gs.rgba = 0x55667788;
        send();
        Gs.gtag = {};
        Gs.regs = 0;
        return GsImage();
    };
    for (const auto& c : cases) {
        const GsImage written = imageAfter([&] {
            for (const auto& [address, value] : c.writes) {
                GSwrite(value, address);
            }
        });
        const GifStream packed =
            GifStream().tag(GifStream::packed, 1, 1, c.descriptor).quadword(c.low, c.high);
        EXPECT_TRUE(imageAfter([&] { packed.send(); }) == written) << "PACKED " << c.descriptor;
        GifStream reglist;
        for (const auto& [address, value] : c.writes) {
            reglist.tag(GifStream::reglist, 1, 1, address).quadword(value, 0);
        }
        EXPECT_TRUE(imageAfter([&] { reglist.send(); }) == written) << "REGLIST " << c.descriptor;
    }
}

TEST_F(Gif, TagsSayHowMuchDataFollow) {
    const u64 nops = ~u64{0};
    const struct {
        GifStream::Form form;
        u32 nloop, nreg, data;
    } cases[] = {
        {GifStream::packed, 3, 2, 6},  {GifStream::packed, 2, 0, 32}, {GifStream::packed, 0, 5, 0},
        {GifStream::reglist, 1, 3, 2}, {GifStream::reglist, 2, 3, 3}, {GifStream::reglist, 1, 0, 8},
        {GifStream::reglist, 0, 5, 0}, {GifStream::image, 5, 9, 5},   {GifStream::imageToo, 5, 0, 5},
        {GifStream::image, 0, 1, 0},
    };
    for (const auto& [form, nloop, nreg, data] : cases) {
        restart();
        GifStream stream;
        stream.tag(form, nloop, nreg, nops);
        for (u32 i = 0; i < data; ++i) {
            stream.quadword(~u64{0}, ~u64{0});  // as a tag, data for 32767 loops of NOPs
        }
        EXPECT_TRUE(endsCleanly(stream) && Gs.gifMode == GifMode::Tag)
            << "form " << form << ", " << nloop << " loops of " << nreg;
    }
}

TEST_F(Gif, TagsMayCarryPrim) {
    GifStream().tag(GifStream::reglist, 0, 1, 0, GifStream::pre(6)).send();
    EXPECT_EQ(Gs.prim().type, 0u) << "only PACKED tags do";
    GifStream().tag(GifStream::packed, 0, 1, 0, GifStream::pre(0x7FE)).send();
    EXPECT_TRUE(Gs.prim().type == 6 && Gs.prim().fix == 1);
    GifStream().tag(GifStream::packed, 0, 1, 0, GifStream::pre(3) & ~GifStream::pre(0)).send();
    EXPECT_EQ(Gs.prim().type, 6u) << "PRE is 0";
}

TEST_F(Gif, ImageTagAfterALocalMoveCarriesNoData) {
    GifStream stream;
    stream.write(TRXDIR, 2).tag(GifStream::image, 4, 1, 0);
    EXPECT_TRUE(endsCleanly(stream));
    EXPECT_EQ(Gs.imageTransfer, 0u);
    GifStream().tag(GifStream::image, 4, 1, 0).send();
    EXPECT_EQ(Gs.gifMode, GifMode::Image);
}

TEST_F(Gif, Image24CountsGroupsOfThreeQuadwords) {
    const u64 bitblt = u64{1} << 48 | u64{1} << 56;  // 64 pixels wide, 24 bits
    for (const u32 left : {0u, 1u, 2u}) {
        restart();
        GifStream stream;
        stream.write(BITBLTBUF, bitblt).write(TRXREG, u64{64} << 32 | 64).tag(GifStream::image, 4, 1, 0);
        const u32 first = stream.quadwords();
        for (u64 i = 0; i < 3 * 3 + left; ++i) {
            stream.quadword(i * 0x0101010101010101, ~u64{0} >> 8 << 8);
        }
        stream.send();
        EXPECT_EQ(Gs.imageX, 48);
        for (u32 pixel = 0; pixel < 48; ++pixel) {
            const u8* bytes = stream.at(first) + pixel * 3;
            EXPECT_EQ(localWord(pixel), u32{bytes[0]} | u32{bytes[1]} << 8 | u32{bytes[2]} << 16);
        }
        // Three of four groups are there: nothing left leaves the tag open, an incomplete one uses it up and
        // is read as tags.
        EXPECT_EQ(Gs.gtag.nloop == 1 && Gs.gifMode == GifMode::Image, left == 0) << left;
    }
}

TEST_F(Gif, StreamsMayBeCutAnywhere) {
    for (u32 number = 0; number < 15; ++number) {
        generator.seed(number);
        const GifStream stream = randomStream();
        restart();
        fillLocalMemory();
        stream.send();
        const GsImage whole;
        for (const u32 longest : {1u, 2u, 7u}) {
            restart();
            fillLocalMemory();
            for (u32 at = 0; at < stream.quadwords();) {
                const u32 count = std::min(1 + random(longest), stream.quadwords() - at);
                GSgifTransfer(stream.at(at), count);
                at += count;
            }
            ASSERT_TRUE(GsImage() == whole) << "stream " << number << " in pieces of up to " << longest;
        }
    }
}

TEST_F(Gif, UncountedTransfersEndWithAPacketMarkedSo) {
    GifStream stream;
    stream.write(FOGCOL, 1).tag(GifStream::image, 2, 1, 0).quadword(1, 2).quadword(3, 4);
    stream.tag(GifStream::packed, 1, 1, 0xE, GifStream::endOfPacket).quadword(2, FOGCOL).write(FOGCOL, 3);
    GSgifTransfer2(stream.at(0));
    EXPECT_EQ(Gs.fogcol, 2u);
    EXPECT_EQ(Gs.gtag.eop, 0u);

    // A packet that is open goes on first; a destination of 24 bits makes no difference.
    GifStream().write(BITBLTBUF, u64{1} << 48 | u64{1} << 56).tag(GifStream::image, 2, 1, 0).send();
    stream =
        GifStream().quadword(5, 6).quadword(7, 8).tag(GifStream::reglist, 0, 1, 0, GifStream::endOfPacket);
    GSgifTransfer2(stream.at(0));
    EXPECT_EQ(Gs.gifMode, GifMode::Tag);
    EXPECT_EQ(localWord(8 + 6), 8u) << "the cursor had moved by 8, without a destination";
}

TEST_F(Gif, UncountedTransfersEndWithMainMemory) {
    ASSERT_TRUE(MipsMemory.allocate(mainMemorySize));  // its end is guarded by the sanitizer
    const GifStream open = GifStream().tag(GifStream::image, 32767, 1, 0).quadword(1, 2).quadword(3, 4);
    u8* start = MipsMemory + mainMemorySize - 3 * 16;
    std::memcpy(start, open.at(0), 3 * 16);
    GSgifTransfer2(start);
    EXPECT_EQ(Gs.gtag.nloop, 32765u);
    EXPECT_EQ(Gs.gifMode, GifMode::Image);
    GSgifTransfer2(MipsMemory + mainMemorySize - 5);  // less than a quadword
    EXPECT_EQ(Gs.gtag.nloop, 32765u);
    MipsMemory.release();
}

}  // namespace
}  // namespace tarn::test
