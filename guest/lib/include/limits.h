// The compiler's <limits.h>, without that of a C library.
#pragma once
#define _LIBC_LIMITS_H_
#include_next <limits.h>
