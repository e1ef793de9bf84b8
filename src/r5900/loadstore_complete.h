// The complete processor's unaligned loads and stores, and those of quadwords; the alignment check of all
// others.
#pragma once

#include "r5900/loadstore.h"

namespace tarn::r5900 {

/// Whether an access of this width is not aligned and must stop.
template <Width width, typename Fields>
inline bool isUnaligned(Fields f) {
    return (gpr(f.base) + signExtend16(f.offset)) % bytesOf(width) != 0;
}

// Quadwords: the low four bits of the address are ignored.

inline u64 quadwordAddress(MemoryFields f) { return (gpr(f.base) + signExtend16(f.offset)) & ~u64{15}; }

inline void LQ_complete(MemoryFields f) {
    MipsMemoryRead(&wholeGpr(f.rt), Width::Quadword, quadwordAddress(f), 0);
}
inline void SQ_complete(MemoryFields f) {
    MipsMemoryWrite(wholeGpr(f.rt), Width::Quadword, quadwordAddress(f), 0);
}

// The left and right forms. Left: the bytes from the start of the aligned word up to the address are the
// upper bytes of the register. Right: the bytes from the address to its end are the lower bytes.

/// The bits of `word` where `mask` is set, else those of `other`.
template <typename Word>
constexpr Word merged(Word word, Word other, Word mask) {
    return (word & mask) | (other & ~mask);
}

/// The aligned word or doubleword around an address, and the shifts between it and the register.
template <typename Word>
struct Surrounding {
    static constexpr Width width = sizeof(Word) == 4 ? Width::Word : Width::Doubleword;
    u64 address;     ///< of the first byte
    u32 leftShift;   ///< from the register down to memory, for the left form
    u32 rightShift;  ///< from memory down to the register, for the right form

    explicit Surrounding(MemoryFields f) {
        const u64 exact = gpr(f.base) + signExtend16(f.offset);
        const auto byte = static_cast<u32>(exact % sizeof(Word));
        address = exact - byte;
        leftShift = bytesOf(width) * 8 - 8 - byte * 8;
        rightShift = byte * 8;
    }
    Word load() const {
        GuestValue word;
        MipsMemoryRead(&word, width, address, 0);
        return static_cast<Word>(word.low);
    }

    /// The old contents for a store. Where loads read the BIOS image, stores go to main memory.
    Word replaced() const {
        const u32 at = mainMemoryOffset<Access::Store>(guestAddress(address, 0), sizeof(Word));
        return at != notMainMemory ? loadFrom<Word>(MipsMemory, at) : load();
    }
    void store(Word word, Word mask) const {
        MipsMemoryWrite({merged(word, replaced(), mask), 0}, width, address, 0);
    }
};

template <typename Word>
inline u64 loadedLeft(MemoryFields f) {
    const Surrounding<Word> at(f);
    return merged<Word>(at.load() << at.leftShift, static_cast<Word>(gpr(f.rt)),
                        static_cast<Word>(~Word{0} << at.leftShift));
}
template <typename Word>
inline u64 loadedRight(MemoryFields f) {
    const Surrounding<Word> at(f);
    return merged<Word>(at.load() >> at.rightShift, static_cast<Word>(gpr(f.rt)), ~Word{0} >> at.rightShift);
}
template <typename Word>
inline void storeLeft(MemoryFields f) {
    const Surrounding<Word> at(f);
    at.store(static_cast<Word>(gpr(f.rt)) >> at.leftShift, ~Word{0} >> at.leftShift);
}
template <typename Word>
inline void storeRight(MemoryFields f) {
    const Surrounding<Word> at(f);
    at.store(static_cast<Word>(gpr(f.rt)) << at.rightShift, static_cast<Word>(~Word{0} << at.rightShift));
}

inline void LWL_complete(MemoryFields f) { setWord(f.rt, loadedLeft<u32>(f)); }
inline void LWR_complete(MemoryFields f) { setWord(f.rt, loadedRight<u32>(f)); }
inline void LDL_complete(MemoryFields f) { setDoubleword(f.rt, loadedLeft<u64>(f)); }
inline void LDR_complete(MemoryFields f) { setDoubleword(f.rt, loadedRight<u64>(f)); }
inline void SWL_complete(MemoryFields f) { storeLeft<u32>(f); }
inline void SWR_complete(MemoryFields f) { storeRight<u32>(f); }
inline void SDL_complete(MemoryFields f) { storeLeft<u64>(f); }
inline void SDR_complete(MemoryFields f) { storeRight<u64>(f); }

}  // namespace tarn::r5900
