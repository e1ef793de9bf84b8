// GIF packets built in guest memory, as a guest builds its display lists.
#pragma once

#include "gs/gs.h"
#include "gs/registers.h"
#include "machine/machine.h"
#include "memory/width_helpers.h"

#include <initializer_list>

namespace tarn::bench {

/// Descriptors of the PACKED form.
enum Descriptor : u64 { packedRGBAQ = 1, packedUV = 3, packedXYZ2 = 5, packedAD = 14 };

/// Writes packets into main memory from `address` on.
class GifPacket {
  public:
    explicit GifPacket(u32 address) : begin(address), end(address) {}

    void quadword(u64 low, u64 high) {
        storeTo(MipsMemory, end, low);
        storeTo(MipsMemory, end + 8, high);
        end += 16;
    }
    void tag(u32 loops, std::initializer_list<Descriptor> descriptors) {
        u64 registers = 0;
        for (u32 shift = 0; const Descriptor descriptor : descriptors) {
            registers |= descriptor << shift;
            shift += 4;
        }
        quadword(loops | 1U << 15 | u64{descriptors.size() & 15} << 60, registers);
    }
    /// Announces `quadwords` quadwords of an image.
    void imageTag(u32 quadwords) { quadword(quadwords | 1U << 15 | u64{2} << 58, 0); }

    /// One register by address, in a packet of its own.
    void set(gs_register::Address address, u64 value) {
        tag(1, {packedAD});
        quadword(value, address);
    }

    void rgbaq(u32 colour) {
        quadword((colour & 0xFF) | u64{colour >> 8 & 0xFF} << 32,
                 (colour >> 16 & 0xFF) | u64{colour >> 24} << 32);
    }
    /// Texels and pixels, whole.
    void uv(u32 u, u32 v) { quadword(u64{u} << 4 | u64{v} << 36, 0); }
    void xyz(u32 x, u32 y, u32 z) { quadword(u64{x} << 4 | u64{y} << 36, z); }

    u32 quadwords() const { return (end - begin) / 16; }
    void send() const { GSgifTransfer(MipsMemory + begin, quadwords()); }

  private:
    u32 begin;
    u32 end;
};

}  // namespace tarn::bench
