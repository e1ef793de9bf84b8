// A part of <math.h>, for floats only.
#pragma once

#ifndef TARN_COMPLETE_CPU
#error "<math.h> needs --complete-cpu; for the default processor real.h has what there is"
#endif

#define M_PI 3.14159265358979323846

#ifdef __cplusplus
extern "C" {
#endif

float fabsf(float value);
float sqrtf(float value);  ///< of the magnitude, like the processor's SQRT.S
float floorf(float value);
float ceilf(float value);
float truncf(float value);
float fmodf(float value, float divisor);
float fminf(float a, float b);
float fmaxf(float a, float b);
float sinf(float angle);  ///< exact to about 1e-5 within a few turns
float cosf(float angle);
float tanf(float angle);
void sincosf(float angle, float* sineOf, float* cosineOf);  ///< called by the compiler

#ifdef __cplusplus
}
#endif
