// All of the guest library. A program defines `int main(void)`.
//
// The complete processor runs whatever the compiler makes of C and C++, and has <stdio.h>, <stdlib.h>,
// <string.h> and <math.h> with the functions that are there. The described one lacks some of what the
// compiler would use: see real.h for floating point, and
// - no NOR: complement(x) for ~x (with a constant ~ is fine);
// - no unsigned 64-bit products of words, no shifts of 64-bit values by a variable, no arithmetic right
//   shift of them by less than 32;
// - signed 64-bit values compare by their low 32 bits;
// - byte and halfword stores work in main memory only.
// The build refuses what would stop the processor and says at which address.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#include "canvas.h"
#include "console.h"
#include "gs.h"
#include "kernel.h"
#include "memory.h"
#include "packet.h"
#include "real.h"
#include "types.h"

#ifdef __cplusplus
}
#endif
