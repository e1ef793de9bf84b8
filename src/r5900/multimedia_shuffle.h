// Parallel instructions that rearrange lanes: extending, packing, interleaving, exchanging and copying; the
// funnel shift and its register SA, and the counting of sign bits.
#pragma once

#include "base/object_bytes.h"
#include "r5900/lanes.h"

#include <cstring>

namespace tarn::r5900 {

// Each result lane is a lane of one of two quadwords. Lane numbers count through both, those of `first`
// come first.

template <typename Lane>
using Vector [[gnu::vector_size(16)]] = Lane;

template <typename Lane, int... from>
inline GuestValue picked(const GuestValue& first, const GuestValue& second) {
    static_assert(sizeof...(from) == 16 / sizeof(Lane));
    return std::bit_cast<GuestValue>(__builtin_shufflevector(std::bit_cast<Vector<Lane>>(first),
                                                             std::bit_cast<Vector<Lane>>(second), from...));
}

/// rd from the lanes of rt and, with higher numbers, rs.
template <typename Lane, int... from>
inline void pick(RegisterFields f) {
    wholeGpr(f.rd) = picked<Lane, from...>(wholeGpr(f.rt), wholeGpr(f.rs));
}

// Lower or upper halves, interleaved; and the even lanes of both.

inline void PEXTLB(RegisterFields f) { pick<u8, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23>(f); }
inline void PEXTLH(RegisterFields f) { pick<u16, 0, 8, 1, 9, 2, 10, 3, 11>(f); }
inline void PEXTLW(RegisterFields f) { pick<u32, 0, 4, 1, 5>(f); }
inline void PEXTUB(RegisterFields f) {
    pick<u8, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31>(f);
}
inline void PEXTUH(RegisterFields f) { pick<u16, 4, 12, 5, 13, 6, 14, 7, 15>(f); }
inline void PEXTUW(RegisterFields f) { pick<u32, 2, 6, 3, 7>(f); }

inline void PPACB(RegisterFields f) {
    pick<u8, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30>(f);
}
inline void PPACH(RegisterFields f) { pick<u16, 0, 2, 4, 6, 8, 10, 12, 14>(f); }
inline void PPACW(RegisterFields f) { pick<u32, 0, 2, 4, 6>(f); }

inline void PINTH(RegisterFields f) { pick<u16, 0, 12, 1, 13, 2, 14, 3, 15>(f); }
inline void PINTEH(RegisterFields f) { pick<u16, 0, 8, 2, 10, 4, 12, 6, 14>(f); }

inline void PCPYLD(RegisterFields f) { pick<u64, 0, 2>(f); }
inline void PCPYUD(RegisterFields f) { pick<u64, 3, 1>(f); }

// Within rt.

inline void PCPYH(RegisterFields f) { pick<u16, 0, 0, 0, 0, 4, 4, 4, 4>(f); }
inline void PEXCH(RegisterFields f) { pick<u16, 0, 2, 1, 3, 4, 6, 5, 7>(f); }
inline void PEXCW(RegisterFields f) { pick<u32, 0, 2, 1, 3>(f); }
inline void PEXEH(RegisterFields f) { pick<u16, 2, 1, 0, 3, 6, 5, 4, 7>(f); }
inline void PEXEW(RegisterFields f) { pick<u32, 2, 1, 0, 3>(f); }
inline void PREVH(RegisterFields f) { pick<u16, 3, 2, 1, 0, 7, 6, 5, 4>(f); }
inline void PROT3W(RegisterFields f) { pick<u32, 1, 2, 0, 3>(f); }

// Conversion between 16-bit colours (1-5-5-5), in the lower half of each word, and 32-bit colours.

inline void PEXT5(RegisterFields f) {
    lanewiseUnary<u32>(f, [](u32 colour) {
        return (colour & 0x1F) << 3 | (colour & 0x3E0) << 6 | (colour & 0x7C00) << 9 |
               (colour & 0x8000) << 16;
    });
}
inline void PPAC5(RegisterFields f) {
    lanewiseUnary<u32>(f, [](u32 colour) {
        return (colour >> 3 & 0x1F) | (colour >> 6 & 0x3E0) | (colour >> 9 & 0x7C00) |
               (colour >> 16 & 0x8000);
    });
}

/// Counts the bits below the sign bit that equal it, in both words of the lower doubleword.
inline void PLZCW(RegisterFields f) {
    const auto words = lanesOf<u32>(f.rs);
    auto results = lanesOf<u32>(f.rd);
    for (std::size_t i = 0; i < 2; ++i) {
        const u32 differing = words[i] ^ (words[i] >> 31 != 0 ? 0xFFFFFFFF : 0);
        results[i] = static_cast<u32>(std::countl_zero(differing) - 1);
    }
    setLanes(f.rd, results);
}

// The funnel shift: 16 of the 32 bytes of rs and rt, starting with byte SA of rt.

inline void QFSRV(RegisterFields f) {
    std::array<GuestValue, 3> bytes{wholeGpr(f.rt), wholeGpr(f.rs), {}};
    std::memcpy(&bytes[2], bytesOfElements(bytes).data() + MipsCpu.SA % 16, sizeof bytes[2]);
    wholeGpr(f.rd) = bytes[2];
}

inline void MFSA(RegisterFields f) { setDoubleword(f.rd, MipsCpu.SA); }
inline void MTSA(RegisterFields f) { MipsCpu.SA = gpr(f.rs); }

/// Shift amounts in bytes and in halfwords. Usually either the register or the immediate is 0.
inline void MTSAB(ImmediateFields f) { MipsCpu.SA = (gpr(f.rs) ^ f.imm) % 16; }
inline void MTSAH(ImmediateFields f) { MipsCpu.SA = (gpr(f.rs) ^ f.imm) % 8 * 2; }

}  // namespace tarn::r5900
