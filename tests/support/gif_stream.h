// GIF packets under construction, for tests and fuzzers.
#pragma once

#include "gs/gs.h"

#include <vector>

namespace tarn::test {

/// A GIF stream under construction, as doublewords.
class GifStream {
  public:
    enum Form : u32 { packed = 0, reglist = 1, image = 2, imageToo = 3 };
    static constexpr u64 endOfPacket = u64{1} << 15;
    static constexpr u64 pre(u32 prim) { return u64{1} << 46 | u64{prim} << 47; }

    /// A tag; the first of its registers is in the lowest four bits.
    GifStream& tag(Form form, u32 nloop, u32 nreg, u64 registers, u64 flags = 0) {
        return quadword(nloop | flags | u64{form} << 58 | u64{nreg & 15} << 60, registers);
    }
    GifStream& quadword(u64 low, u64 high) {
        words.insert(words.end(), {low, high});
        return *this;
    }
    /// One register write in a packet of its own, as address + data.
    GifStream& write(u32 address, u64 value) { return tag(packed, 1, 1, 0xE).quadword(value, address); }

    u32 quadwords() const { return static_cast<u32>(words.size() / 2); }
    const u8* at(u32 quadword) const { return reinterpret_cast<const u8*>(words.data() + quadword * 2); }
    void send() const { GSgifTransfer(at(0), quadwords()); }

  private:
    std::vector<u64> words;
};

}  // namespace tarn::test
