// Addressing of local memory: every index wraps at 4 MB.
#pragma once

#include "machine/machine.h"

#include <algorithm>

namespace tarn {

/// The word at `index`, taken modulo the size of local memory.
inline u32& localWord(u32 index) { return Gs.vRamUL()[index & (localMemoryWords - 1)]; }

/// A stretch of local memory, which may wrap at its end.
struct WordRange {
    u32 first = 0;
    u32 count = 0;
};

constexpr bool overlap(WordRange a, WordRange b) {
    return a.count != 0 && b.count != 0 &&
           ((b.first - a.first) % localMemoryWords < a.count ||
            (a.first - b.first) % localMemoryWords < b.count);
}

/// `count` words from `first` on, at most all of local memory.
constexpr WordRange wordRange(u32 first, s64 count) {
    return {first, static_cast<u32>(std::clamp<s64>(count, 0, localMemoryWords))};
}

/// Calls use(words, first, run) for each contiguous run of the `count` words from `index` on: `words` points
/// to its `run` words, and `first` words come before it.
template <typename Use>
void forLocalRuns(u32 index, u32 count, Use use) {
    for (u32 first = 0; first < count;) {
        const u32 start = (index + first) & (localMemoryWords - 1);
        const u32 run = std::min(count - first, localMemoryWords - start);
        use(Gs.vRamUL() + start, first, run);
        first += run;
    }
}

/// Counts a rectangle of local memory as work. A width or height of 0 or less counts nothing.
inline void countWork(s64 width, s64 height) {
    if (width > 0 && height > 0) {
        Gs.work += static_cast<u64>(width * height);
    }
}

/// Word `index` of the current context's frame buffer and depth buffer.
inline u32& fBufUL(u32 index) { return localWord(Gs.gsfb().fbp + index); }
inline u32& zBufUL(u32 index) { return localWord(Gs.zbuf().zbp + index); }

/// How many rows of a buffer `width` pixels wide local memory holds. Width 0 counts as 1.
constexpr u32 maxRowsOf(u32 width) { return width == 0 ? localMemoryWords : localMemoryWords / width; }

}  // namespace tarn
