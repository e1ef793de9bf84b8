// The scene.
#pragma once

#include <math.h>

typedef struct {
    float x;
    float y;
    float z;
} Vector;

static inline Vector add(Vector a, Vector b) { return (Vector){a.x + b.x, a.y + b.y, a.z + b.z}; }
static inline Vector subtract(Vector a, Vector b) { return (Vector){a.x - b.x, a.y - b.y, a.z - b.z}; }
static inline Vector scale(Vector a, float by) { return (Vector){a.x * by, a.y * by, a.z * by}; }
static inline Vector multiply(Vector a, Vector b) { return (Vector){a.x * b.x, a.y * b.y, a.z * b.z}; }
static inline float dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
static inline Vector unit(Vector a) { return scale(a, 1.0f / sqrtf(dot(a, a))); }
static inline Vector mix(Vector a, Vector b, float share) {
    return add(scale(a, 1.0f - share), scale(b, share));
}

/// The colour (red, green, blue; 1 is full) of a point of the picture. The centre is (0, 0), the upper edge
/// is at up = 1.
Vector lightAlong(float right, float up);
