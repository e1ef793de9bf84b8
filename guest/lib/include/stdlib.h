// A part of <stdlib.h>.
#pragma once

#ifndef TARN_COMPLETE_CPU
#error "<stdlib.h> needs --complete-cpu; for the default processor tarn_guest.h has what there is"
#endif

#include <stddef.h>

#define EXIT_SUCCESS 0
#define EXIT_FAILURE 1

#ifdef __cplusplus
extern "C" {
#endif

void* malloc(size_t bytes);  ///< aligned to 16
void* calloc(size_t count, size_t bytes);
void* realloc(void* block, size_t bytes);
void free(void* block);

void exit(int status) __attribute__((noreturn));  ///< stops the processor with the status in a0
void abort(void) __attribute__((noreturn));       ///< stops it at a trap

int abs(int value);
long labs(long value);
long long llabs(long long value);

#ifdef __cplusplus
}
#endif
