// Functions of <string.h>, <stdlib.h> and <math.h>.
#include "kernel.h"
#include "real.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

size_t strlen(const char* text) {
    const char* end = text;
    while (*end != 0)
        end++;
    return (size_t)(end - text);
}

int strncmp(const char* a, const char* b, size_t count) {
    for (; count != 0; count--, a++, b++)
        if (*a != *b || *a == 0)
            return (u8)*a - (u8)*b;
    return 0;
}

int strcmp(const char* a, const char* b) { return strncmp(a, b, (size_t)-1); }

char* strcpy(char* destination, const char* source) {
    return memcpy(destination, source, strlen(source) + 1);
}

char* strncpy(char* destination, const char* source, size_t count) {
    for (char* to = destination; count != 0; count--, to++)
        if ((*to = *source) != 0)
            source++;
    return destination;
}

char* strcat(char* destination, const char* source) {
    strcpy(destination + strlen(destination), source);
    return destination;
}

char* strchr(const char* text, int character) {
    for (; *text != (char)character; text++)
        if (*text == 0)
            return 0;
    return (char*)text;
}

char* strrchr(const char* text, int character) {
    const char* last = 0;
    do
        if (*text == (char)character)
            last = text;
    while (*text++ != 0);
    return (char*)last;
}

void* memchr(const void* memory, int byte, size_t bytes) {
    for (const u8* at = memory; bytes != 0; bytes--, at++)
        if (*at == (u8)byte)
            return (void*)at;
    return 0;
}

void exit(int status) { Exit(status); }

void abort(void) { __builtin_trap(); }

int abs(int value) { return value < 0 ? -value : value; }
long labs(long value) { return value < 0 ? -value : value; }
long long llabs(long long value) { return value < 0 ? -value : value; }

float fabsf(float value) { return __builtin_fabsf(value); }
float sqrtf(float value) { return __builtin_sqrtf(value); }
float fminf(float a, float b) { return a < b ? a : b; }
float fmaxf(float a, float b) { return a < b ? b : a; }

/// Floats from 2^23 up have no fraction.
float truncf(float value) { return fabsf(value) < 8388608.0f ? (float)(int)value : value; }

float floorf(float value) {
    float whole = truncf(value);
    return whole > value ? whole - 1.0f : whole;
}

float ceilf(float value) { return -floorf(-value); }

/// Divides the fractions bit by bit, which is exact. The remainder of a division by 0 is 0.
float fmodf(float value, float divisor) {
    u32 dividend = bitsOf(fabsf(value));
    u32 by = bitsOf(fabsf(divisor));
    if (dividend < by)
        return value;
    s32 exponent = (s32)(by >> 23);
    s32 shift = (s32)(dividend >> 23) - exponent;
    u32 rest = (dividend & 0x7FFFFF) | 0x800000;
    by = (by & 0x7FFFFF) | 0x800000;
    for (;; rest <<= 1) {
        if (rest >= by)
            rest -= by;
        if (shift-- == 0)
            break;
    }
    for (; rest != 0 && rest < 0x800000; rest <<= 1)
        exponent--;
    if (rest == 0 || exponent <= 0)
        rest = 0, exponent = 0;
    rest = (bitsOf(value) & 0x80000000) | (u32)exponent << 23 | (rest & 0x7FFFFF);
    __builtin_memcpy(&value, &rest, sizeof value);
    return value;
}

float sinf(float angle) { return sine(angle); }
float cosf(float angle) { return cosine(angle); }
void sincosf(float angle, float* sineOf, float* cosineOf) {
    *sineOf = sine(angle);
    *cosineOf = cosine(angle);
}
float tanf(float angle) { return sine(angle) / cosine(angle); }
