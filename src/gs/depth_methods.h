// Depth methods: whether a pixel's depth lets it through, and what it leaves in the depth buffer.
//
// A method is positioned on a pixel of a row. passes(stored), value() and step() are for that pixel; the
// next() of Vectors<count> returns the depths of `count` pixels at a time.
#pragma once

#include "base/device_codes.h"
#include "base/vectors.h"
#include "machine/machine.h"

#include <array>

namespace tarn {

/// No depth buffer is read or written.
struct NoDepth {
    static constexpr bool used = false;
    static constexpr u32 fewestForVectors = 0;

    template <u32 count>
    struct Vectors {
        explicit Vectors(const NoDepth& /*depth*/) {}
    };
    static void advance(u32 /*count*/) {}
};

/// Depth is z × 65536, with a step per pixel; both wrap.
template <DepthTest test>
struct SteppedDepth {
    static constexpr bool used = true;
    static constexpr u32 fewestForVectors = 16;
    u64 z = 0;
    u64 delta = 0;

    u32 value() const { return static_cast<u32>(z >> 16); }
    /// Of a word, or of each word of a vector.
    template <typename Word>
    [[gnu::always_inline]] static auto passes([[maybe_unused]] const Word& value,
                                              [[maybe_unused]] const Word& stored) {
        if constexpr (test == DepthTest::GreaterOrEqual) {
            return value >= stored;
        } else if constexpr (test == DepthTest::Greater) {
            return value > stored;
        } else if constexpr (std::is_same_v<Word, u32>) {
            return true;
        } else {
            return ~decltype(value == stored){};
        }
    }
    void step() { advance(1); }
    void advance(u32 count) { z += count * delta; }

    template <u32 count>
    struct Vectors {
        using Words = WordVector<count>;
        Words values;
        Words fractions;  ///< in bits 16-31
        u32 step, fractionStep;

        [[gnu::always_inline]] explicit Vectors(const SteppedDepth& depth)
            : step(high(count * depth.delta)), fractionStep(low(count * depth.delta)) {
            std::array<u32, count> first{}, firstFractions{};
            for (u32 i = 0; i < count; ++i) {
                first[i] = high(depth.z + i * depth.delta);
                firstFractions[i] = low(depth.z + i * depth.delta);
            }
            values = bitCast<Words>(first);
            fractions = bitCast<Words>(firstFractions);
        }
        [[gnu::always_inline]] Words next() {
            const Words result = values;
            fractions += fractionStep;
            const auto carries = fractions < fractionStep;  // each is 0 or -1
            values += step - bitCast<Words>(carries);
            return result;
        }

        static u32 high(u64 z) { return static_cast<u32>(z >> 16); }
        static u32 low(u64 z) { return static_cast<u32>(z << 16); }
    };
};

/// Calls draw(depth) with the method that TEST.ZTST selects, or not at all under NEVER.
template <typename Draw>
void withDepthTest(Draw draw) {
    switch (DepthTest{Gs.test().ztst}) {
    case DepthTest::Never:
        return;
    case DepthTest::Always:
        return draw(SteppedDepth<DepthTest::Always>{});
    case DepthTest::GreaterOrEqual:
        return draw(SteppedDepth<DepthTest::GreaterOrEqual>{});
    case DepthTest::Greater:
        return draw(SteppedDepth<DepthTest::Greater>{});
    }
}

}  // namespace tarn
