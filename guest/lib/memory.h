// Memory functions, with the standard names because the compiler calls them on its own.
#pragma once

#include "types.h"

void* memcpy(void* destination, const void* source, u32 bytes);
void* memmove(void* destination, const void* source, u32 bytes);
void* memset(void* destination, s32 value, u32 bytes);
s32 memcmp(const void* a, const void* b, u32 bytes);

/// Copy and fill by quadwords; both pointers aligned to 16, `count` at least 1.
void copyQuadwords(void* destination, const void* source, u32 count);
void fillQuadwords(void* destination, u64 doubleword, u32 count);
