// The guest library under test, as the compiler builds it: conversions, products, functions of reals.
#include "operations.h"

static u64 throughReal(u64 a, u64 b) {
    (void)b;
    return (u64)(s64)toInteger(toReal((s32)a));
}

static u64 realBits(u64 a, u64 b) {
    (void)b;
    return bitsOf(toReal((s32)a));
}

static u64 halved(u64 a, u64 b) {
    (void)b;
    return (u64)(s64)toInteger(toReal((s32)a) / 2.0f);
}

static u64 product(u64 a, u64 b) { return (u64)multiplyWide((s32)a, (s32)b); }

static u64 quotient(u64 a, u64 b) { return (u64)((u32)a / (u32)b) << 32 | (u32)a % (u32)b; }

static u64 inverted(u64 a, u64 b) {
    (void)b;
    return complement((u32)a);
}

/// Thousandths, rounded.
static u64 thousandths(f32 value) {
    return (u64)(s64)toInteger(value * 1000.0f + (value < 0.0f ? -0.5f : 0.5f));
}

static u64 sineOf(u64 a, u64 b) { return thousandths(sine(toReal((s32)a) / toReal((s32)b))); }
static u64 cosineOf(u64 a, u64 b) { return thousandths(cosine(toReal((s32)a) / toReal((s32)b))); }
static u64 rootOf(u64 a, u64 b) {
    (void)b;
    return thousandths(squareRoot(toReal((s32)a)));
}

static u64 ordered(u64 a, u64 b) {
    f32 x = toReal((s32)a);
    f32 y = toReal((s32)b);
    return (u64)(lessThan(x, y) * 4 + (smaller(x, y) == x) * 2 + (larger(x, y) == x));
}

/// Copies and fills of every alignment stay within their bounds, checked by the sum of all bytes.
static u64 copied(u64 a, u64 b) {
    static u8 from[64];
    static u8 to[64];
    for (u32 i = 0; i < 64; i++) {
        from[i] = (u8)i;
        to[i] = 0;
    }
    memcpy(to + a, from + a, (u32)b);
    memset(from + a, 1, (u32)b);
    u64 sum = 0;
    for (u32 i = 0; i < 64; i++)
        sum += to[i] * 10000u + from[i];
    return sum;
}

const Case libraryCases[] = {
    {"TO REAL", throughReal, (u64)-7, 0, (u64)-7},
    {"TO REAL", throughReal, 16777216, 0, 16777216},
    {"TO REAL", realBits, (u64)-1, 0, 0xBF800000},
    {"TO INTEGER", halved, (u64)-7, 0, (u64)-3},
    {"PRODUCT", product, 0x7FFFFFFF, (u64)-4, (u64)-0x1FFFFFFFC},
    {"PRODUCT", product, 0x12345678, 0x1000, 0x12345678000},
    {"QUOTIENT", quotient, 4000000000, 7, 571428571ull << 32 | 3},
    {"COMPLEMENT", inverted, 0x12345678, 0, 0xEDCBA987},
    {"SINE", sineOf, 1, 1, 841},
    {"SINE", sineOf, (u64)-31416, 20000, (u64)-1000},
    {"SINE", sineOf, 25, 1, (u64)-132},
    {"COSINE", cosineOf, 31416, 10000, (u64)-1000},
    {"ROOT", rootOf, 2, 0, 1414},
    {"ROOT", rootOf, 1000000, 0, 1000000},
    {"ROOT", rootOf, (u64)-4, 0, 0},
    {"ORDER", ordered, (u64)-3, 2, 6},
    {"ORDER", ordered, 2, (u64)-3, 1},
    {"COPY", copied, 0, 64, 20160064},
    {"COPY", copied, 16, 20, 5101526},
    {"COPY", copied, 5, 33, 6931356},
    {0, 0, 0, 0, 0},
};
