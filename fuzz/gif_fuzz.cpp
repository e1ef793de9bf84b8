// GIF quadwords through the transfer entry points, with drawing, image transfers and local moves behind them.
// An input is read as steps that make register writes, tags with their data, or quadwords as they come; the
// stream that results is then handed over whole, in pieces, or without a count at the end of main memory.
#include "gs/interface_extras.h"
#include "gs/registers.h"
#include "support.h"
#include "support/gif_stream.h"

namespace tarn {
namespace {

using namespace gs_register;
using test::GifStream;

/// The bits of a register's value that stay when it is to be of ordinary size: small rectangles near the
/// origin. Most of the time goes into drawing otherwise.
u64 ordinary(u32 address) {
    switch (address) {
    case SCISSOR_1:
    case SCISSOR_2:
    case TRXREG:
    case TRXPOS:
        return 0x007F007F007F007F;
    case FRAME_1:
    case FRAME_2:
        return ~u64{0x3C0000};
    case XYZF2:
    case XYZ2:
    case XYZF3:
    case XYZ3:
        return 0xFFFFFFFF07FF07FF;
    case XYOFFSET_1:
    case XYOFFSET_2:
        return 0x000000FF000000FF;
    case ST:
        return 0xBFFFFFFFBFFFFFFF;
    default:
        return ~u64{0};
    }
}

u64 takeValue(fuzz::Input& input, u32 address) {
    constexpr u64 formats[] = {0x00, 0x01, 0x02, 0x0A, 0x13, 0x14, 0x1B, 0x24};
    const u8 choice = input.take<u8>();
    const u64 value = input.take<u64>();
    if (choice >= 0xE0) {
        return value;
    }
    if (address == TEX0_1 || address == TEX0_2) {
        return (value & ~u64{0x3F00000}) | formats[choice % std::size(formats)] << 20;
    }
    return value & ordinary(address);
}

/// Sets up a transfer between small rectangles, into local memory or within it, and starts it.
void addTransfer(GifStream& stream, fuzz::Input& input, u64 direction) {
    constexpr u64 narrowBuffers = 0x0103FFFF0103FFFF;  // 64 to 192 pixels, and 32 or 24 bits
    stream.tag(GifStream::packed, 4, 1, 0xE).quadword(input.take<u64>() & narrowBuffers, BITBLTBUF);
    stream.quadword(takeValue(input, TRXPOS), TRXPOS);
    stream.quadword(takeValue(input, TRXREG), TRXREG).quadword(direction, TRXDIR);
}

void addStep(GifStream& stream, fuzz::Input& input) {
    constexpr u64 flagBits = 0x0FFFC00000008000;
    const u8 choice = input.take<u8>();
    const u32 nloop = input.take<u8>();
    switch (choice & 7) {
    case 0:
    case 1: {  // registers by address; the second byte says which, but for a few that are out of range
        const u32 address = nloop % 0x60;
        stream.write(address, takeValue(input, address));
        break;
    }
    case 2:
        addTransfer(stream, input, nloop & 3);
        break;
    case 3:  // a primitive's vertices, each with colour and texel
        stream.tag(GifStream::packed, nloop & 3, 3, choice & 0x80 ? 0x5320 : 0x5210,
                   u64{choice} << 44 & flagBits);
        for (u64 i = 0; i < (nloop & 3); ++i) {
            stream.quadword(input.take<u64>(), input.take<u64>());
            stream.quadword(input.take<u64>(), input.take<u64>());
            const u64 position = input.take<u32>() & 0x07FF07FF;
            stream.quadword((position & 0xFFFF) | (position >> 16) << 32, input.take<u16>());
        }
        break;
    case 4:  // PACKED or REGLIST of any registers
        stream.tag(static_cast<GifStream::Form>(choice >> 3 & 3), nloop & 7, choice >> 4, input.take<u64>(),
                   input.take<u64>() & flagBits);
        for (u64 i = 0; i < (nloop >> 3); ++i) {
            stream.quadword(takeValue(input, XYZ2), takeValue(input, XYZ2));
        }
        break;
    case 5:
    case 6: {  // an image
        stream.tag(choice >= 0x80 ? GifStream::imageToo : GifStream::image, nloop, 0, 0);
        const u64 pixels = input.take<u64>();
        for (u64 i = 0; i < (nloop & 0x1F); ++i) {
            stream.quadword(pixels * i, ~pixels * i);
        }
        break;
    }
    default:
        stream.quadword(input.take<u64>(), input.take<u64>());
        break;
    }
}

void send(const GifStream& stream, u32 pieces) {
    const fuzz::WorkTimer timer;
    if (pieces == 0) {
        u8* place = MipsMemory + mainMemorySize - stream.quadwords() * 16;
        std::copy_n(stream.at(0), stream.quadwords() * 16, place);
        GSgifTransfer2(place);
        return;
    }
    for (u32 at = 0; at < stream.quadwords(); at += pieces) {
        GSgifTransfer(stream.at(at), std::min(pieces, stream.quadwords() - at));
    }
}

/// What holds between any two transfers.
void checkState() {
    fuzz::require(Gs.primC >= 0 && Gs.primC < 3, "the queue has a free slot");
    fuzz::require(Gs.regn <= 16 && Gs.gtag.nloop < 0x8000, "the tag's counts are in range");
    fuzz::require(&Gs.prim() == &Gs._prim[0] || &Gs.prim() == &Gs._prim[1], "the primitive is one of two");
    const u32 context = Gs.prim().ctxt;
    fuzz::require(&Gs.gsfb() == &Gs._gsfb[context] && &Gs.zbuf() == &Gs._zbuf[context] &&
                      &Gs.fba() == &Gs._fba[context] && &Gs.xyoffset() == &Gs._offset[context],
                  "the context is the primitive's");
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    fuzz::restartRenderer();
    fuzz::Input input({data, size});
    const u8 settings = input.take<u8>();
    Settings.blend = settings & 1;
    // A frame that shows something from the first vertex on.
    GSwrite(u64{1} << 16, FRAME_1);
    GSwrite(u64{63} << 16 | u64{63} << 48, SCISSOR_1);
    GifStream stream;
    while (!input.empty() && stream.quadwords() < 512) {  // which bounds the drawing
        addStep(stream, input);
    }
    send(stream, settings >> 1 & 7);
    checkState();
    return 0;
}
