// Sine, cosine and square root from the four operations.
#include "real.h"

static const f32 halfPi = 1.57079633f;

f32 sine(f32 angle) {
    // The nearest multiple of pi leaves -pi/2 to pi/2; odd multiples change the sign.
    f32 turns = angle * 0.318309886f;
    s32 half = toInteger(turns < 0.0f ? turns - 0.5f : turns + 0.5f);
    f32 x = angle - toReal(half) * 3.14159265f;
    f32 x2 = x * x;
    f32 value =
        x * (1.0f + x2 * (-0.16666667f + x2 * (0.0083333310f + x2 * (-0.00019840874f + x2 * 2.7525562e-6f))));
    return (half & 1) != 0 ? -value : value;
}

f32 cosine(f32 angle) { return sine(angle + halfPi); }

f32 squareRoot(f32 value) {
    if (!lessThan(0.0f, value))
        return 0.0f;
#ifdef TARN_COMPLETE_CPU
    return __builtin_sqrtf(value);
#else
    // Halving the exponent gives a start within a factor of 1.5.
    union {
        u32 word;
        f32 real;
    } root = {(bitsOf(value) >> 1) + 0x1FBD1DF5};
    for (s32 round = 0; round < 3; round++)
        root.real = 0.5f * (root.real + value / root.real);
    return root.real;
#endif
}
