// The compiler's own <stdint.h>, which otherwise includes that of a C library.
#pragma once
#include <stdint-gcc.h>
