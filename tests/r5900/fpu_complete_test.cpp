// The complete processor's floating-point arithmetic. A result is right when it is not above the exact one in
// magnitude and the next number is, which is decided in quadruple precision without forming the exact one.
#include "r5900/complete_machine.h"

#include <cmath>
#include <random>

namespace tarn::test {
namespace {

using Wide = __float128;

constexpr u32 sign = 0x80000000, largest = 0x7FFFFFFF, smallest = 0x00800000;
constexpr u32 flagI = 1 << 17, flagD = 1 << 16, flagO = 1 << 15, flagU = 1 << 14;
constexpr u32 fs = 1, ft = 2, fd = 3;

/// The magnitude of a number; `image` may be one beyond the largest. Denormals are zeros.
Wide magnitude(u64 image) {
    const auto exponent = static_cast<int>(image >> 23);
    return exponent == 0 ? 0 : std::ldexp(static_cast<double>(0x800000 + (image & 0x7FFFFF)), exponent - 150);
}
bool isNegative(u32 image) { return (image & sign) != 0; }
Wide value(u32 image) { return isNegative(image) ? -magnitude(image & largest) : magnitude(image & largest); }

u32 randomNumber(std::mt19937_64& random, u32 near) {
    constexpr u32 extremes[] = {0,          1,          0x7FFFFF,   smallest,   smallest + 1,
                                0x3F800000, 0x3F7FFFFF, 0x40000000, 0x7F7FFFFF, 0x7F800000,
                                largest,    0x4F000000, 0x4EFFFFFF, 0x00FFFFFF};
    const auto bits = static_cast<u32>(random());
    switch (random() % 4) {
    case 0:
        return extremes[bits % std::size(extremes)] ^ (bits & sign);
    case 1:
        return bits;
    case 2:  // for cancellation: a few exponents or last bits away
        return near + (bits % 64 << 23) - (32 << 23);
    default:
        return (near + bits % 3 - 1) ^ (bits & sign);
    }
}

class FpuComplete : public CompleteTest {
  protected:
    static u32 image(u32 number) { return static_cast<u32>(MipsCpu.FPR128[number].low); }
    static void setImage(u32 number, u32 bits) {
        MipsCpu.FPR128[number].low = bits;
        MipsCpu.FPR32[number] = std::bit_cast<f32>(bits);
    }
    /// Executes a function with fresh flags; gives those that it set.
    static u32 flagsOf(u32 function) {
        MipsCpu.FCR[31] = 0;
        execute(single(function, ft, fs, fd));
        EXPECT_EQ(image(fd), std::bit_cast<u32>(MipsCpu.FPR32[fd]));
        const auto flags = static_cast<u32>(MipsCpu.FCR[31]) & 0x3C000;
        EXPECT_EQ(MipsCpu.FCR[31], flags | flags >> 11) << "sticky flags";
        return flags;
    }
    template <typename Check>
    void forOperands(Check check) {
        for (int i = 0; i < 5000 && !HasFailure(); ++i) {
            const u32 a = randomNumber(random, 0x3F800000), b = randomNumber(random, a);
            SCOPED_TRACE(hex(a) + " " + hex(b));
            setImage(fs, a);
            setImage(ft, b);
            check(a, b);
        }
    }
    std::mt19937_64 random{1};
};

/// Whether the magnitude `q` is at most that of the exact result, whose sign is known.
using AtMost = bool (*)(Wide q, u32 a, u32 b);

/// The sum of a and b is at least `q` in magnitude: brought to the side of the larger operand, whose
/// difference to q is exact.
bool sumAtLeast(Wide q, Wide a, Wide b) {
    const bool first = (a < 0 ? -a : a) > (b < 0 ? -b : b);
    const Wide larger = first ? a : b, smaller = first ? b : a;
    if (a == -b) {
        return q == 0;
    }
    return larger < 0 ? -q - larger >= smaller : q - larger <= smaller;
}

TEST_F(FpuComplete, ResultsAreTruncatedAndLimited) {
    const struct {
        u32 function;
        AtMost atMost;
        bool (*negative)(u32 a, u32 b);
        bool limitsSetFlags;
    } operations[] = {
        {0, [](Wide q, u32 a, u32 b) { return sumAtLeast(q, value(a), value(b)); },
         [](u32 a, u32 b) {
             return value(a) + value(b) < 0 || (value(a) == 0 && value(b) == 0 && (a & b & sign));
         },
         true},
        {1, [](Wide q, u32 a, u32 b) { return sumAtLeast(q, value(a), -value(b)); },
         [](u32 a, u32 b) {
             return value(a) < value(b) || (value(a) == 0 && value(b) == 0 && (a & ~b & sign));
         },
         true},
        {2, [](Wide q, u32 a, u32 b) { return q <= magnitude(a & largest) * magnitude(b & largest); },
         [](u32 a, u32 b) { return isNegative(a ^ b); }, true},
        {3, [](Wide q, u32 a, u32 b) { return q * magnitude(b & largest) <= magnitude(a & largest); },
         [](u32 a, u32 b) { return isNegative(a ^ b); }, false},
        {4, [](Wide q, u32, u32 b) { return q * q <= magnitude(b & largest); },
         [](u32, u32 b) { return value(b) == 0 && isNegative(b); }, false},
        {22,
         [](Wide q, u32 a, u32 b) {
             return q * q * magnitude(b & largest) <= magnitude(a & largest) * magnitude(a & largest);
         },
         [](u32 a, u32 b) { return isNegative(value(b) == 0 ? a ^ b : a); }, false},
    };
    for (const auto& operation : operations) {
        forOperands([&](u32 a, u32 b) {
            const auto& [function, atMost, negative, limitsSetFlags] = operation;
            const u32 flags = flagsOf(function), result = image(fd), found = result & largest;
            const bool dividesByZero = (function == 3 || function == 22) && value(b) == 0;
            EXPECT_EQ(isNegative(result), negative(a, b)) << function;
            EXPECT_TRUE(found == 0 || found >= smallest) << function;
            EXPECT_TRUE(atMost(magnitude(found), a, b)) << function << " " << hex(result);
            if (dividesByZero) {
                EXPECT_EQ(flags, function == 3 && value(a) == 0 ? flagI : flagD);
                EXPECT_EQ(found, largest);
                return;
            }
            const bool above = atMost(magnitude(u64{found == 0 ? smallest - 1 : found} + 1), a, b);
            EXPECT_EQ(above, above && found == largest) << function << " " << hex(result);
            const bool vanishes = found == 0 && atMost(std::ldexp(1.0, -400), a, b);
            const u32 expected = (function == 4 || function == 22) && value(b) < 0 ? flagI
                                 : !limitsSetFlags                                 ? 0
                                 : above                                           ? flagO
                                 : vanishes                                        ? flagU
                                                                                   : 0;
            EXPECT_EQ(flags, expected) << function << " " << hex(result);
        });
    }
}

TEST_F(FpuComplete, TheAccumulatorTakesTruncatedProducts) {
    // MADD, MSUB, MADDA, MSUBA; and ADDA, SUBA, MULA against the same into a register.
    for (const u32 function : {28U, 29U, 30U, 31U, 24U, 25U, 26U}) {
        forOperands([&](u32 a, u32 b) {
            const u32 accumulator = randomNumber(random, a + b - 0x3F800000);
            u32 expectedFlags, expected;
            if (function >= 28) {
                expectedFlags = flagsOf(2);
                setImage(ft, image(fd));
                setImage(fs, accumulator);
                expectedFlags |= flagsOf(function & 1);
            } else {
                expectedFlags = flagsOf(function - 24);
            }
            expected = image(fd);
            setImage(fs, a);
            setImage(ft, b);
            setImage(fd, 0x1234);
            MipsCpu.ACC = accumulator;
            EXPECT_EQ(flagsOf(function), expectedFlags) << function;
            const bool toRegister = function == 28 || function == 29;
            EXPECT_EQ(hex(image(fd)), hex(toRegister ? expected : 0x1234)) << function;
            EXPECT_EQ(hex(MipsCpu.ACC), hex(toRegister ? accumulator : expected)) << function;
        });
    }
}

TEST_F(FpuComplete, SignsOrderAndConversions) {
    const auto rank = [](u32 a) { return isNegative(a) ? -1 - s64{a & largest} : s64{a}; };
    forOperands([&](u32 a, u32 b) {
        const auto resultOf = [&](u32 function) {
            MipsCpu.FCR[31] = 0xFFFFFFFF;
            execute(single(function, ft, fs, fd));
            return image(fd);
        };
        EXPECT_EQ(resultOf(5), a & largest);
        EXPECT_EQ(MipsCpu.FCR[31], 0xFFFFFFFF & ~(flagO | flagU));
        EXPECT_EQ(resultOf(7), a ^ sign);
        EXPECT_EQ(resultOf(6), a);
        EXPECT_EQ(resultOf(40), rank(a) > rank(b) ? a : b);
        EXPECT_EQ(resultOf(41), rank(a) < rank(b) ? a : b);
        const Wide low = INT32_MIN, high = INT32_MAX, exact = value(a);
        EXPECT_EQ(resultOf(36), static_cast<u32>(static_cast<s32>(exact < low    ? low
                                                                  : exact > high ? high
                                                                                 : exact)));
        EXPECT_EQ(MipsCpu.FCR[31], 0xFFFFFFFF);
        execute(coprocessor1(20, 0, fs << 11 | fd << 6 | 32));
        const s64 integer = static_cast<s32>(a);
        const Wide converted = value(image(fd)),
                   rest = integer < 0 ? converted - integer : integer - converted;
        EXPECT_TRUE(rest >= 0 && (integer < 0) == (converted < 0));
        EXPECT_TRUE(integer == 0 || magnitude(image(fd) % sign + u64{1}) > std::abs(integer));
        for (const auto& [function, holds] : {std::pair{48U, false},
                                              {50, value(a) == value(b)},
                                              {52, value(a) < value(b)},
                                              {54, value(a) <= value(b)}}) {
            MipsCpu.FCR[31] = holds ? 1 : 1 | 1 << 23;
            execute(single(function, ft, fs, 0));
            EXPECT_EQ(MipsCpu.FCR[31], holds ? 1 | 1 << 23 : 1) << function;
        }
        execute(coprocessor1(0, 8, fs << 11));
        EXPECT_EQ(MipsCpu.GPR[8].low, signExtend32(a));
    });
    setImage(fs, 0x40800000);
    setImage(0, 0x41800000);
    execute(single(4, 0, fs, fd));  // SQRT.S as assemblers for other processors have it
    EXPECT_EQ(image(fd), 0x40000000U);
    MipsCpu.GPR[8].low = ~u64{0};
    execute(coprocessor1(6, 8, 31 << 11));
    execute(coprocessor1(2, 9, 31 << 11));
    EXPECT_EQ(MipsCpu.GPR[9].low, 0x0183C079U);
}

}  // namespace
}  // namespace tarn::test
