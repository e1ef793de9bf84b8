// The GIF packet parser: tags, and the PACKED, REGLIST and IMAGE forms of their data.
#include "gs/gif.h"

#include "base/bits.h"
#include "gs/gs.h"
#include "gs/registers.h"
#include "gs/transfer.h"
#include "gs/vertex_registers.h"
#include "machine/machine.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace tarn {
namespace {

template <typename Word>
Word load(const u8* data) {
    Word word;
    std::memcpy(&word, data, sizeof word);
    return word;
}

constexpr u64 join(u32 low, u32 high) { return low | (u64{high} << 32); }

/// The walk over the descriptors of a tag, loop by loop. Kept outside the record while data are consumed,
/// which is safe because no register write reads it.
class DescriptorWalk {
  public:
    ~DescriptorWalk() {
        Gs.regn = next;
        Gs.gtag.nloop = loops;
        if (loops == 0) {
            Gs.gifMode = GifMode::Tag;
        }
    }
    DescriptorWalk() = default;
    DescriptorWalk(const DescriptorWalk&) = delete;
    DescriptorWalk& operator=(const DescriptorWalk&) = delete;

    bool ended() const { return loops == 0; }
    u32 descriptor() const { return static_cast<u32>(registers >> (4 * next)) & 15; }
    void step() {
        if (++next >= count) {
            next = 0;
            --loops;
        }
    }

  private:
    const u64 registers = Gs.regs;
    const u32 count = Gs.gtag.nreg;
    u32 next = Gs.regn;
    u32 loops = Gs.gtag.nloop;
};

// Each consumes data of one form up to the end of the tag or the stream; the end of the tag sets the mode.
// Images are not split: a 24-bit image is not the same in pieces, and the size of the data bounds the work.

void consumePacked(GifInput& stream) {
    DescriptorWalk walk;
    while (stream.goesOn() && !walk.ended()) {
        GIFprocessReg(stream.data, walk.descriptor());
        walk.step();
        stream.skip(1);
    }
}

void consumeReglist(GifInput& stream) {
    DescriptorWalk walk;
    while (stream.goesOn() && !walk.ended()) {
        GSwrite(load<u64>(stream.data), walk.descriptor());
        walk.step();
        if (!walk.ended()) {  // the upper half is padding otherwise
            GSwrite(load<u64>(stream.data + 8), walk.descriptor());
            walk.step();
        }
        stream.skip(1);
    }
}

void consumeImage(GifInput& stream) {
    const u32 count = static_cast<u32>(std::min<u64>(stream.quadwords, Gs.gtag.nloop));
    FBwriteBlock(stream.data, count);
    stream.skip(count);
    Gs.gtag.nloop -= count;
    if (Gs.gtag.nloop == 0) {
        Gs.gifMode = GifMode::Tag;
    }
}

/// For a 24-bit destination NLOOP counts groups of three quadwords, which hold sixteen pixels. An incomplete
/// group at the end of the stream uses up the rest of NLOOP, and its quadwords are read as tags.
void consumeImage24(GifInput& stream) {
    while (stream.quadwords > 2 && Gs.gtag.nloop > 0) {
        FBwrite24_3(stream.data);
        stream.skip(3);
        --Gs.gtag.nloop;
    }
    if (stream.quadwords > 0) {
        Gs.gtag.nloop = 0;
    }
    if (Gs.gtag.nloop == 0) {
        Gs.gifMode = GifMode::Tag;
    }
}

}  // namespace

void consumeGif(GifInput& stream, bool groups24) {
    if (Gs.gifMode == GifMode::Tag) {
        GIFtag(stream.data);
        stream.skip(1);
    } else if (Gs.gtag.nloop == 0) {
        Gs.gifMode = GifMode::Tag;
    } else if (Gs.gifMode == GifMode::Packed) {
        consumePacked(stream);
    } else if (Gs.gifMode == GifMode::Reglist) {
        consumeReglist(stream);
    } else if (groups24 && Gs.dstbuf.psm == pixel_format::PSMCT24) {
        consumeImage24(stream);
    } else {
        consumeImage(stream);
    }
}

void GIFtag(const u8* quadword) {
    const u64 low = load<u64>(quadword);
    const u32 nreg = bits(low, 60, 4);
    Gs.gtag = {
        .nloop = bits(low, 0, 15),
        .eop = bit(low, 15),
        .flg = bits(low, 58, 2),
        .nreg = nreg == 0 ? 16 : nreg,
        .prim = bits(low, 47, 11),
        .pre = bit(low, 46),
    };
    const GifForm form{Gs.gtag.flg};
    if (form == GifForm::Packed || form == GifForm::Reglist) {
        Gs.regs = load<u64>(quadword + 8);
        Gs.regn = 0;
    }
    switch (form) {
    case GifForm::Packed:
        Gs.gifMode = GifMode::Packed;
        if (Gs.gtag.pre == 1) {
            GSwrite(Gs.gtag.prim, gs_register::PRIM);
        }
        break;
    case GifForm::Reglist:
        Gs.gifMode = GifMode::Reglist;
        break;
    default:
        if (Gs.imageTransfer == localToLocal) {
            Gs.imageTransfer = 0;  // the copy within local memory is complete; no data follow
        } else {
            Gs.gifMode = GifMode::Image;
            Gs.imagePtr = Gs.dstbuf.bp;
        }
        break;
    }
}

void GIFprocessReg(const u8* quadword, u32 descriptor) {
    using namespace gs_register;
    const auto w = load<std::array<u32, 4>>(quadword);
    const GsVertex& pending = pendingVertex();
    const u32 xy = (w[0] & 0xFFFF) | (w[1] & 0xFFFF) << 16;
    const bool noDrawing = bit(w[3], 15) != 0;  // bit 111 of the quadword
    switch (descriptor) {
    case PRIM:
        GSwrite(w[0], PRIM);
        break;
    case RGBAQ: {
        const u32 rgba = bits(w[0], 0, 8) | bits(w[1], 0, 8) << 8 | bits(w[2], 0, 8) << 16 | w[3] << 24;
        writeRgbaq(rgba, std::bit_cast<u32>(pending.q));
        break;
    }
    case ST:
        writeSt(w[0], w[1]);
        // Q has no register of its own: it is written together with the vertex's colour, which thereby
        // becomes the current one.
        writeRgbaq(pending.rgba, w[2]);
        break;
    case UV:
        writeUv((w[0] & 0x7FFF) | (w[1] & 0x7FFF) << 16);
        break;
    case XYZF2:
        // The fog coefficient is taken from bits 104-111, four above its place on the console.
        writeXyzf(xy, ((w[2] >> 4) & 0xFFFFFF) | (w[3] & 0xFF00) << 16, !noDrawing);
        break;
    case XYZ2:
        writeXyz(xy, w[2], !noDrawing);
        break;
    case AD:
        GSwrite(join(w[0], w[1]), bits(w[2], 0, 8));
        break;
    default:
        return;  // including TEX0, CLAMP and FOG, which the console does accept in PACKED form
    }
    gsSetCtxt(Gs.prim().ctxt);
}

void GSgifTransfer(const u8* data, u32 count) {
    GifInput stream{data, count};
    while (Gs.vRam != nullptr && stream.goesOn()) {
        consumeGif(stream, true);
    }
}

u32 GSgifTransferStep(const u8* data, u32 count) {
    if (Gs.vRam == nullptr) {
        return count;
    }
    GifInput stream{data, count, Gs.work + gifStepWork};
    while (stream.goesOn()) {
        consumeGif(stream, true);
    }
    return count - static_cast<u32>(stream.quadwords);
}

}  // namespace tarn
