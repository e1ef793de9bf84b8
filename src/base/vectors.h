// Vectors of words, and loops that are compiled twice: for any processor, and for those with 32-byte vectors.
//
// Functions that such a loop calls use its vectors only if they are inlined, so they are all always_inline.
#pragma once

#include "base/types.h"

#include <cstring>
#include <type_traits>

namespace tarn {

/// The number of words in a vector.
template <u32 count>
using VectorWords = std::integral_constant<u32, count>;

template <u32 count>
struct VectorTypes {
    typedef u32 Words __attribute__((vector_size(4 * count)));
    typedef s32 SignedWords __attribute__((vector_size(4 * count)));
    typedef u16 Halves __attribute__((vector_size(4 * count)));
    typedef s16 SignedHalves __attribute__((vector_size(4 * count)));
};

template <u32 count>
using WordVector = typename VectorTypes<count>::Words;

/// Like std::bit_cast, which is not always_inline.
template <typename To, typename From>
[[gnu::always_inline]] inline To bitCast(const From& from) {
    return __builtin_bit_cast(To, from);
}

/// first, first + delta, first + 2 × delta …
template <u32 count>
[[gnu::always_inline]] inline WordVector<count> steppedWords(u32 first, u32 delta) {
    WordVector<count> numbers = {};
    for (u32 i = 0; i < count; ++i) {
        numbers[i] = i;
    }
    return first + numbers * delta;
}

template <u32 count>
[[gnu::always_inline]] inline WordVector<count> loadWords(const u32* words) {
    WordVector<count> result;
    std::memcpy(&result, words, sizeof result);
    return result;
}

template <typename Vector>
[[gnu::always_inline]] inline void storeWords(u32* words, const Vector& vector) {
    std::memcpy(words, &vector, sizeof vector);
}

#if defined(__x86_64__)

inline bool hasWideVectors = __builtin_cpu_supports("avx2") != 0;  ///< tests switch it off

template <typename Loop>
[[gnu::target("avx2")]] void callWithWideVectors(Loop loop) {
    loop(VectorWords<8>{});
}

#else

inline bool hasWideVectors = false;

#endif

/// Calls loop(VectorWords) compiled for vectors as wide as the processor's.
template <typename Loop>
void withVectors(Loop loop) {
#if defined(__x86_64__)
    if (hasWideVectors) {
        return callWithWideVectors(loop);
    }
#endif
    loop(VectorWords<4>{});
}

}  // namespace tarn
