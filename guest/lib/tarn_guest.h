// The whole guest library. A program defines `int main(void)`.
//
// The complete processor runs all code that the compiler generates from C and C++, and has parts of
// <stdio.h>, <stdlib.h>, <string.h> and <math.h>. The described one lacks some operations: see real.h for
// floating point, and - no NOR: complement(x) for ~x (with a constant ~ is fine); - no unsigned 64-bit
// products of words, no shifts of 64-bit values by a variable, no arithmetic right
//   shift of them by less than 32;
// - signed 64-bit values compare by their low 32 bits; - byte and halfword stores work in main memory only.
// The build fails if the program contains an instruction that would stop the processor, and prints its
// address.
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
