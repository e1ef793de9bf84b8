// Fixed-width names for guest code, and access to the registers of devices.
#pragma once

typedef unsigned char u8;
typedef unsigned short u16;
typedef unsigned int u32;
typedef unsigned long long u64;
typedef signed char s8;
typedef signed short s16;
typedef signed int s32;
typedef signed long long s64;
typedef float f32;

/// 16 bytes of memory, aligned as DMA transfers and LQ/SQ want them.
typedef struct {
    u64 low;
    u64 high;
} __attribute__((aligned(16))) Quadword;

/// Stores to a device register. The DMA controller takes 32 or 64 bits; the Graphics Synthesizer's
/// privileged registers are written with 64 bits.
static inline void writeDevice32(u32 address, u32 value) { *(volatile u32*)address = value; }
static inline void writeDevice64(u32 address, u64 value) { *(volatile u64*)address = value; }
static inline u32 readDevice32(u32 address) { return *(volatile u32*)address; }
static inline u64 readDevice64(u32 address) { return *(volatile u64*)address; }

/// The complement of a word. The processor has no NOR here, and the compiler turns `~x` into one; the
/// complete processor has it.
static inline u32 complement(u32 value) {
    u32 ones = 0xFFFFFFFF;
#ifndef TARN_COMPLETE_CPU
    __asm__("" : "+r"(ones));
#endif
    return value ^ ones;
}
