// The arithmetic of the complete processor's floating-point unit, on bit images of its numbers.
//
// There are no infinities, NaNs or denormals: exponent 255 is an ordinary exponent, and any number with
// exponent 0 is a signed zero. Results are truncated towards zero. Overflow gives the largest number,
// underflow gives zero, both with the sign of the result.
#pragma once

#include "base/types.h"

#include <bit>
#include <cmath>
#include <utility>

namespace tarn::r5900 {

/// Flags of FCR31 for the last operation; the sticky ones, which only CTC1 clears, are 11 bits lower.
inline constexpr u32 flagInvalid = 1 << 17, flagDivision = 1 << 16, flagOverflow = 1 << 15,
                     flagUnderflow = 1 << 14;

/// A result and the flags it sets.
struct Number {
    u32 image;
    u32 flags = 0;
};

inline constexpr u32 signMask = 0x80000000;
inline constexpr u32 largestNumber = 0x7FFFFFFF;

constexpr u32 exponentOf(u32 image) { return image >> 23 & 0xFF; }
constexpr bool isZero(u32 image) { return exponentOf(image) == 0; }

// Double precision represents all numbers exactly, all products, and all sums of two numbers whose exponents
// are close enough. Its quotients and roots are rounded, but never up to a number of 24 bits: exact results
// are at least 2^-48 (relative) away from one. So truncating to 24 bits gives exactly truncated results.

inline constexpr unsigned doubleFraction = 52, numberFraction = 23;
inline constexpr u64 biasDifference = 1023 - 127;
inline constexpr u64 belowNumber = (u64{1} << (doubleFraction - numberFraction)) - 1;

constexpr double widened(u32 image) {
    const u64 magnitude = (u64{image & largestNumber} << (doubleFraction - numberFraction)) +
                          (biasDifference << doubleFraction);
    return std::bit_cast<double>(u64{image & signMask} << 32 | (isZero(image) ? 0 : magnitude));
}

constexpr Number truncated(double value) {
    const auto image = std::bit_cast<u64>(value);
    const auto sign = static_cast<u32>(image >> 32) & signMask;
    const u64 magnitude = (image & ~(u64{1} << 63)) >> (doubleFraction - numberFraction);
    constexpr u64 rebias = biasDifference << numberFraction;
    constexpr u64 smallest = u64{1} << numberFraction;
    if (magnitude - rebias - smallest <= largestNumber - smallest) [[likely]] {
        return {sign | static_cast<u32>(magnitude - rebias)};
    }
    if (magnitude == 0) {
        return {sign};
    }
    return magnitude > rebias + smallest ? Number{sign | largestNumber, flagOverflow}
                                         : Number{sign, flagUnderflow};
}

constexpr Number sumOf(u32 left, u32 right) {
    if (exponentOf(left) < exponentOf(right)) {
        std::swap(left, right);
    }
    if (exponentOf(left) - exponentOf(right) <= 26) [[likely]] {
        return truncated(widened(left) + widened(right));
    }
    // The smaller operand is less than 1/8 of the last bit of the larger one.
    const bool reduces = !isZero(right) && ((left ^ right) & signMask) != 0;
    return {reduces ? left - 1 : left};
}

constexpr Number differenceOf(u32 left, u32 right) { return sumOf(left, right ^ signMask); }

constexpr Number productOf(u32 left, u32 right) { return truncated(widened(left) * widened(right)); }

/// The result of a division by zero.
constexpr Number dividedByZero(u32 dividend, u32 divisor, u32 flags) {
    return {((dividend ^ divisor) & signMask) | largestNumber, flags};
}

/// Quotients that are too large or too small set no flags.
constexpr Number quotientOf(u32 left, u32 right) {
    if (isZero(right)) {
        return dividedByZero(left, right, isZero(left) ? flagInvalid : flagDivision);
    }
    return {truncated(widened(left) / widened(right)).image};
}

/// The root of a negative number is the root of its magnitude; the root of -0 is -0.
inline Number rootOf(u32 image) {
    if (isZero(image)) {
        return {image & signMask};
    }
    return {truncated(std::sqrt(widened(image & largestNumber))).image,
            (image & signMask) != 0 ? flagInvalid : 0};
}

/// left / sqrt(right). Double precision is not enough here: for a candidate q of 24 bits, q squared times
/// `right` is compared exactly with `left` squared.
inline Number reciprocalRootOf(u32 left, u32 right) {
    if (isZero(right)) {
        return dividedByZero(left, right, flagDivision);
    }
    const double dividend = widened(left & largestNumber);
    const double radicand = widened(right & largestNumber);
    const auto exceeds = [&](u64 image) {
        const auto q = std::bit_cast<double>(image);
        const double product = q * q * radicand;
        return dividend * dividend - product < std::fma(q * q, radicand, -product);
    };
    u64 image = std::bit_cast<u64>(dividend / std::sqrt(radicand)) & ~belowNumber;
    if (dividend != 0) {
        image = exceeds(image)                     ? image - belowNumber - 1
                : exceeds(image + belowNumber + 1) ? image
                                                   : image + belowNumber + 1;
    }
    return {truncated(std::bit_cast<double>(image)).image | (left & signMask),
            (right & signMask) != 0 ? flagInvalid : 0};
}

/// Truncates to an integer, saturated to 32 bits.
constexpr s32 integerOf(u32 image) {
    const double value = widened(image);
    if (value >= 0x1p31 || value < -0x1p31) {
        return (image & signMask) != 0 ? INT32_MIN : INT32_MAX;
    }
    return static_cast<s32>(value);
}

/// Maps numbers to integers of the same order (sign and magnitude); -0 is below 0.
constexpr s32 ordered(u32 image) {
    return static_cast<s32>((image & signMask) != 0 ? image ^ largestNumber : image);
}

/// The same, with all zeros equal.
constexpr s32 comparable(u32 image) { return isZero(image) ? 0 : ordered(image); }

}  // namespace tarn::r5900
