// Single-precision arithmetic for the described processor's floating-point unit.
//
// It adds, subtracts, multiplies, divides, negates, and compares with == and <. Other operations either stop
// the processor (<= and >=, fabsf, square roots) or silently give wrong results (casts between integers and
// floats, reading the bits of a float): use these functions instead. The build refuses programs with such
// instructions. On the complete processor, each function is the plain C operation.
#pragma once

#include "types.h"

#ifdef TARN_COMPLETE_CPU

static inline s32 lessThan(f32 a, f32 b) { return a < b; }
static inline s32 toInteger(f32 value) { return (s32)value; }
static inline f32 toRealUnsigned(u32 value) { return (f32)value; }
static inline f32 toReal(s32 value) { return (f32)value; }

static inline u32 bitsOf(f32 value) {
    u32 word;
    __builtin_memcpy(&word, &value, sizeof word);
    return word;
}

static inline s64 multiplyWide(s32 a, s32 b) { return (s64)a * b; }

#else

/// a < b, also where the compiler would turn `!(a < b)` into the missing "less or equal".
static inline s32 lessThan(f32 a, f32 b) {
    s32 result;
    __asm__(".set push\n\t"
            ".set noreorder\n\t"
            "c.lt.s %1, %2\n\t"
            "bc1t   1f\n\t"
            "li     %0, 1\n\t"
            "li     %0, 0\n"
            "1:\n\t"
            ".set pop"
            : "=&r"(result)
            : "f"(a), "f"(b)
            : "$fcc0");
    return result;
}

/// Truncates to an integer. MFC1 converts, and clears bits 32 to 63 whatever the sign; the shift by 0
/// sign-extends.
static inline s32 toInteger(f32 value) {
    f32 whole;
    s32 result;
    __asm__(".set push\n\t"
            ".set noreorder\n\t"
            "trunc.w.s %0, %2\n\t"
            "mfc1   %1, %0\n\t"
            "sll    %1, %1, 0\n\t"
            ".set pop"
            : "=&f"(whole), "=r"(result)
            : "f"(value));
    return result;
}

/// CVT_S takes all 64 bits of its operand, unsigned: the upper half must be clear.
static inline f32 toRealUnsigned(u32 value) {
    f32 result;
    u32 word = value;
    __asm__(".set push\n\t"
            ".set noreorder\n\t"
            "dsll32 %1, %1, 0\n\t"
            "dsrl32 %1, %1, 0\n\t"
            "mtc1   %1, %0\n\t"
            "cvt.s.w %0, %0\n\t"
            ".set pop"
            : "=f"(result), "+r"(word));
    return result;
}

static inline f32 toReal(s32 value) {
    return value < 0 ? -toRealUnsigned((u32)-value) : toRealUnsigned((u32)value);
}

/// The bit pattern of a float. MFC1 would convert, so it goes through memory.
static inline u32 bitsOf(f32 value) {
    u32 word;
    __asm__("swc1 %1, %0" : "=m"(word) : "f"(value));
    return word;
}

/// The product of two signed words, all 64 bits. MULT must name a destination: without one it writes r0.
static inline s64 multiplyWide(s32 a, s32 b) {
    s64 low;
    s64 high;
    __asm__("mult %0, %2, %3\n\t"
            "mfhi %1"
            : "=&r"(low), "=r"(high)
            : "r"(a), "r"(b)
            : "hi", "lo");
    return (s64)((u64)high << 32 | (u32)low);
}

#endif

static inline f32 absolute(f32 value) { return value < 0.0f ? -value : value; }
static inline f32 smaller(f32 a, f32 b) { return a < b ? a : b; }
static inline f32 larger(f32 a, f32 b) { return a < b ? b : a; }

/// Sine and cosine of an angle in radians, exact to about 1e-5 within a few turns.
f32 sine(f32 angle);
f32 cosine(f32 angle);

static inline f32 square(f32 value) { return value * value; }

/// Square root by Newton's method; 0 for numbers that are not positive.
f32 squareRoot(f32 value);
