// The compiler's run-time functions: 64-bit and 128-bit arithmetic, bit counts, conversions of floats.
#include "types.h"

typedef __int128 s128;
typedef unsigned __int128 u128;

typedef union {
    s128 value;
    struct {
        u64 low;
        u64 high;
    };
} Halves;

static inline u32 bitsOfReal(f32 value) {
    union {
        f32 real;
        u32 bits;
    } both = {value};
    return both.bits;
}

static inline f32 realOfBits(u32 bits) {
    union {
        u32 bits;
        f32 real;
    } both = {bits};
    return both.real;
}

// Bit counts.

s32 __clzdi2(u64 value) {
    s32 count = 0;
    for (u32 step = 32; step != 0; step >>= 1)
        if (value >> (64 - step) == 0) {
            count += (s32)step;
            value <<= step;
        }
    return value == 0 ? 64 : count;
}

s32 __clzsi2(u32 value) { return __clzdi2(value) - 32; }

s32 __ctzdi2(u64 value) { return 63 - __clzdi2(value & -value); }

s32 __ctzsi2(u32 value) { return __ctzdi2(value); }

s32 __ffsdi2(u64 value) { return value == 0 ? 0 : __ctzdi2(value) + 1; }

s32 __ffssi2(u32 value) { return __ffsdi2(value); }

s32 ffs(s32 value) { return __ffsdi2((u32)value); }

/// Copies of the sign below the sign itself.
s32 __clrsbdi2(s64 value) { return __clzdi2((u64)(value ^ value >> 63)) - 1; }

s32 __clrsbsi2(s32 value) { return __clrsbdi2(value) - 32; }

s32 __popcountdi2(u64 value) {
    value -= value >> 1 & 0x5555555555555555;
    value = (value & 0x3333333333333333) + (value >> 2 & 0x3333333333333333);
    value = (value + (value >> 4)) & 0x0F0F0F0F0F0F0F0F;
    value += value >> 8;
    value += value >> 16;
    return (s32)(value + (value >> 32)) & 0x7F;
}

s32 __popcountsi2(u32 value) { return __popcountdi2(value); }

s32 __paritydi2(u64 value) { return __popcountdi2(value) & 1; }

s32 __paritysi2(u32 value) { return __paritydi2(value); }

u32 __bswapsi2(u32 value) {
    value = (value & 0x00FF00FF) << 8 | (value >> 8 & 0x00FF00FF);
    return value << 16 | value >> 16;
}

u64 __bswapdi2(u64 value) { return (u64)__bswapsi2((u32)value) << 32 | __bswapsi2((u32)(value >> 32)); }

// 64-bit products and quotients. The processor only multiplies and divides words.

/// The product of two words. Written in C it would call __muldi3.
static inline u64 multiplyWords(u32 a, u32 b) {
    u64 low;
    u64 high;
    __asm__("multu %2, %3\n\t"
            "mflo %0\n\t"
            "mfhi %1"
            : "=&r"(low), "=r"(high)
            : "r"(a), "r"(b)
            : "hi", "lo");
    return high << 32 | (u32)low;
}

u64 __muldi3(u64 a, u64 b) {
    u32 crosswise = (u32)(a >> 32) * (u32)b + (u32)a * (u32)(b >> 32);
    return multiplyWords((u32)a, (u32)b) + ((u64)crosswise << 32);
}

/// Stops the processor like a division of words by zero.
static void divisionByZero(void) { __builtin_trap(); }

static u64 divide(u64 dividend, u64 divisor, u64* remainder) {
    if ((dividend | divisor) >> 32 == 0) {
        *remainder = (u32)dividend % (u32)divisor;
        return (u32)dividend / (u32)divisor;
    }
    if (divisor == 0)
        divisionByZero();
    u64 quotient = 0;
    if (dividend >= divisor) {
        s32 shift = __clzdi2(divisor) - __clzdi2(dividend);
        divisor <<= shift;
        for (; shift >= 0; shift--) {
            quotient <<= 1;
            if (dividend >= divisor) {
                dividend -= divisor;
                quotient |= 1;
            }
            divisor >>= 1;
        }
    }
    *remainder = dividend;
    return quotient;
}

static inline u64 magnitude(s64 value) { return value < 0 ? -(u64)value : (u64)value; }

u64 __udivdi3(u64 a, u64 b) {
    u64 remainder;
    return divide(a, b, &remainder);
}

u64 __umoddi3(u64 a, u64 b) {
    u64 remainder;
    divide(a, b, &remainder);
    return remainder;
}

u64 __divdi3(s64 a, s64 b) {
    u64 quotient = __udivdi3(magnitude(a), magnitude(b));
    return (a ^ b) < 0 ? -quotient : quotient;
}

u64 __moddi3(s64 a, s64 b) {
    u64 remainder = __umoddi3(magnitude(a), magnitude(b));
    return a < 0 ? -remainder : remainder;
}

// 128 bits, from their halves.

u128 __ashlti3(u128 value, s32 count) {
    Halves halves = {(s128)value};
    if (count >= 64) {
        halves.high = halves.low << (count - 64);
        halves.low = 0;
    } else if (count != 0) {
        halves.high = halves.high << count | halves.low >> (64 - count);
        halves.low <<= count;
    }
    return (u128)halves.value;
}

/// Shifts to the right and fills with `sign`, 0 or all ones.
static u128 shiftRight(u128 value, s32 count, u64 sign) {
    Halves halves = {(s128)value};
    if (count >= 64) {
        halves.low = count == 64 ? halves.high : halves.high >> (count - 64) | sign << (128 - count);
        halves.high = sign;
    } else if (count != 0) {
        halves.low = halves.low >> count | halves.high << (64 - count);
        halves.high = halves.high >> count | sign << (64 - count);
    }
    return (u128)halves.value;
}

u128 __lshrti3(u128 value, s32 count) { return shiftRight(value, count, 0); }

u128 __ashrti3(s128 value, s32 count) { return shiftRight((u128)value, count, value < 0 ? -(u64)1 : 0); }

u128 __multi3(u128 a, u128 b) {
    Halves left = {(s128)a};
    Halves right = {(s128)b};
    u32 x[2] = {(u32)left.low, (u32)(left.low >> 32)};
    u32 y[2] = {(u32)right.low, (u32)(right.low >> 32)};
    u64 low = multiplyWords(x[0], y[0]);
    u64 first = multiplyWords(x[1], y[0]) + (low >> 32);
    u64 second = multiplyWords(x[0], y[1]) + (u32)first;
    Halves product;
    product.low = second << 32 | (u32)low;
    product.high = multiplyWords(x[1], y[1]) + (first >> 32) + (second >> 32) + left.low * right.high +
                   left.high * right.low;
    return (u128)product.value;
}

static u128 divideWide(u128 dividend, u128 divisor, u128* remainder) {
    Halves left = {(s128)dividend};
    Halves right = {(s128)divisor};
    if ((left.high | right.high) == 0) {
        u64 rest;
        u64 quotient = divide(left.low, right.low, &rest);
        *remainder = rest;
        return quotient;
    }
    if ((right.low | right.high) == 0)
        divisionByZero();
    u128 quotient = 0;
    u128 rest = 0;
    for (s32 bit = 127; bit >= 0; bit--) {
        rest = rest << 1 | (bit >= 64 ? left.high >> (bit - 64) & 1 : left.low >> bit & 1);
        quotient <<= 1;
        if (rest >= divisor) {
            rest -= divisor;
            quotient |= 1;
        }
    }
    *remainder = rest;
    return quotient;
}

static inline u128 magnitudeWide(s128 value) { return value < 0 ? -(u128)value : (u128)value; }

u128 __udivti3(u128 a, u128 b) {
    u128 remainder;
    return divideWide(a, b, &remainder);
}

u128 __umodti3(u128 a, u128 b) {
    u128 remainder;
    divideWide(a, b, &remainder);
    return remainder;
}

u128 __divti3(s128 a, s128 b) {
    u128 quotient = __udivti3(magnitudeWide(a), magnitudeWide(b));
    return (a < 0) != (b < 0) ? -quotient : quotient;
}

u128 __modti3(s128 a, s128 b) {
    u128 remainder = __umodti3(magnitudeWide(a), magnitudeWide(b));
    return a < 0 ? -remainder : remainder;
}

// Conversions. Like the processor's own they truncate and saturate.

/// mantissa × 2^exponent, the mantissa not 0.
static f32 compose(u64 mantissa, u32 exponent) {
    s32 zeros = __clzdi2(mantissa);
    mantissa <<= zeros;
    return realOfBits((127 + 63 - (u32)zeros + exponent) << 23 | ((u32)(mantissa >> 40) & 0x7FFFFF));
}

f32 __floatundisf(u64 value) { return value == 0 ? 0.0f : compose(value, 0); }

f32 __floatdisf(s64 value) {
    f32 real = __floatundisf(magnitude(value));
    return value < 0 ? -real : real;
}

f32 __floatuntisf(u128 value) {
    Halves halves = {(s128)value};
    if (halves.high == 0)
        return __floatundisf(halves.low);
    s32 zeros = __clzdi2(halves.high);
    halves.value = (s128)__ashlti3(value, zeros);
    return compose(halves.high, 64 - (u32)zeros);
}

f32 __floattisf(s128 value) {
    f32 real = __floatuntisf(magnitudeWide(value));
    return value < 0 ? -real : real;
}

/// The whole part of the magnitude, which must be below 2^width.
static u128 wholePart(u32 bits, u32 width) {
    s32 exponent = (s32)(bits >> 23 & 0xFF) - 127;
    u64 mantissa = (bits & 0x7FFFFF) | 0x800000;
    if (exponent < 0)
        return 0;
    if (exponent >= (s32)width)
        return shiftRight((u128)-1, 128 - (s32)width, 0);
    return exponent < 23 ? mantissa >> (23 - exponent) : __ashlti3(mantissa, exponent - 23);
}

u64 __fixunssfdi(f32 value) {
    u32 bits = bitsOfReal(value);
    return bits >> 31 ? 0 : (u64)wholePart(bits, 64);
}

u64 __fixsfdi(f32 value) {
    u32 bits = bitsOfReal(value);
    u64 whole = (u64)wholePart(bits, 63);
    return bits >> 31 ? -whole : whole;
}

u128 __fixunssfti(f32 value) {
    u32 bits = bitsOfReal(value);
    return bits >> 31 ? 0 : wholePart(bits, 128);
}

u128 __fixsfti(f32 value) {
    u32 bits = bitsOfReal(value);
    u128 whole = wholePart(bits, 127);
    return bits >> 31 ? -whole : whole;
}

f32 __powisf2(f32 base, s32 exponent) {
    f32 power = 1.0f;
    for (u32 left = exponent < 0 ? -(u32)exponent : (u32)exponent; left != 0; left >>= 1) {
        if (left & 1)
            power *= base;
        base *= base;
    }
    return exponent < 0 ? 1.0f / power : power;
}

/// The address of a nested function is code on the stack. There is no cache to flush.
void _flush_cache(void) {}
