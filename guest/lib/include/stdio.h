// A part of <stdio.h>: text on the screen, 53 columns by 30 rows, shown at the end of each call.
//
// Conversions are d i u o x X c s p f and %, with the flags - 0 + # and space, a width, a precision, and the
// sizes hh, h, l, ll and z. %f is for floats, since there is no arithmetic on doubles.
#pragma once

#ifndef TARN_COMPLETE_CPU
#error "<stdio.h> needs --complete-cpu; for the default processor tarn_guest.h has what there is"
#endif

#include <stdarg.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

int printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
int vprintf(const char* format, va_list arguments);
int snprintf(char* text, size_t bytes, const char* format, ...) __attribute__((format(printf, 3, 4)));
int vsnprintf(char* text, size_t bytes, const char* format, va_list arguments);
int sprintf(char* text, const char* format, ...) __attribute__((format(printf, 2, 3)));
int puts(const char* text);
int putchar(int character);

#ifdef __cplusplus
}
#endif
