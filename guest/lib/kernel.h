// The implemented kernel calls. All others stop the processor at their SYSCALL instruction.
#pragma once

#include "types.h"

typedef s32 (*DmacHandler)(s32 channel);

u64 setupThread(u32 gp, s32 stack, s32 stackSize, const char* arguments);  ///< 0x3C: top of the stack
u64 setupHeap(u64 start, u64 size);                                        ///< 0x3D: end of the heap

void SetGsCrt(u32 interlace, u32 mode, u32 field);      ///< 0x02: accepted, no effect
void AddDmacHandler(u32 channel, DmacHandler handler);  ///< 0x12: channels 0 to 9
s32 EnableDmac(u32 channel);                            ///< 0x16: 1, or 0 when it was enabled already
s32 CreateSema(const void* parameters);                 ///< 0x40: 1 for the only one, then 0
void FlushCache(u32 operation);                         ///< 0x64: accepted; there is no cache
void GsGetIMR(void);                                    ///< 0x70: accepted, no result
u64 GsPutIMR(u64 mask);                                 ///< 0x71: the mask itself
void iGsPutIMR(u64 mask);                               ///< 0x8F: accepted, no effect
void iGsGetIMR(void);                                   ///< 0x90: accepted, no result
void sceSifSetDma(const void* transfers, u32 count);    ///< 0x77: count 1 starts SIF0, see below
u64 sceSifSetDChain(void);                              ///< 0x78: channel 5's control register
u64 sceSifGetReg(u32 number);                           ///< 0x7A: 0x60000
void call9C(void);                                      ///< 0x9C: accepted, no effect
void Exit(s32 status) __attribute__((noreturn));        ///< 0x04: stops the processor; main returns to it

// The first sceSifSetDma with a count of 1 continues in the handler registered for channel 5, with the
// registers as they are: the handler's return is the return of sceSifSetDma. Later ones do nothing.

/// Allocates heap memory, rounded up to and aligned to 16 bytes. Returns null if there is none left. Cannot
/// be freed.
void* allocate(u32 bytes);

/// Waits for a number of driver steps. Each is an instruction, or a taken branch with its delay slot.
void waitSteps(u32 steps);

/// Steps from one vertical blank to the next.
enum { stepsPerFrame = 28659 };

#ifdef TARN_COMPLETE_CPU
/// The number of the driver step that reads it, modulo 2^32.
static inline u32 stepCount(void) {
    u32 count;
    __asm__ volatile("mfc0 %0, $9" : "=r"(count));
    return count;
}

/// Returns with the step after that number: the caller's next instruction is the second one behind it. At
/// once when the step is over.
void waitForStep(u32 step);

/// Returns when the next vertical blank has just come, however long ago the last one was (but for 2^32
/// steps).
void waitFrame(void);
#else
/// Nothing tells a program that a vertical blank has come (reading the field register flips it), but a wait
/// this long meets one.
static inline void waitFrame(void) { waitSteps(stepsPerFrame); }
#endif

/// Shows what is shown for ever.
void waitForever(void) __attribute__((noreturn));
