// Spheres and a floor: intersection with rays, and shading.
#include "scene.h"

#include <stdbool.h>
#include <stddef.h>

typedef struct {
    Vector centre;
    float radius;
    Vector colour;
    float mirror;  ///< fraction of light that is reflected
} Sphere;

static const Sphere spheres[] = {
    {{0.0f, 1.0f, 0.0f}, 1.0f, {0.95f, 0.95f, 0.98f}, 0.80f},
    {{-2.0f, 0.7f, -0.4f}, 0.7f, {0.85f, 0.10f, 0.08f}, 0.18f},
    {{1.75f, 0.6f, -1.0f}, 0.6f, {0.95f, 0.62f, 0.10f}, 0.25f},
    {{-0.75f, 0.35f, -1.75f}, 0.35f, {0.08f, 0.35f, 0.80f}, 0.25f},
    {{0.65f, 0.28f, -2.0f}, 0.28f, {0.12f, 0.60f, 0.20f}, 0.20f},
    {{2.6f, 1.2f, 2.4f}, 1.2f, {0.55f, 0.20f, 0.60f}, 0.30f},
    {{-3.2f, 1.0f, 2.6f}, 1.0f, {0.10f, 0.55f, 0.60f}, 0.30f},
};
enum { sphereCount = sizeof spheres / sizeof spheres[0], deepest = 4 };

static const Vector eye = {0.0f, 1.55f, -6.0f};
static const Vector towardsSun = {-0.62f, 0.70f, -0.12f};
static const Vector sunlight = {1.0f, 0.95f, 0.85f};
static const Vector horizon = {0.62f, 0.74f, 0.88f};
static const Vector zenith = {0.10f, 0.25f, 0.60f};
static const float farAway = 1e6f;
static const float near = 1e-3f;

/// The distance along the ray to its first point on the sphere, or farAway. The direction has length 1.
static float meetSphere(const Sphere* sphere, Vector from, Vector direction) {
    Vector between = subtract(sphere->centre, from);
    float along = dot(between, direction);
    float root = along * along - dot(between, between) + sphere->radius * sphere->radius;
    if (root <= 0.0f)
        return farAway;
    root = sqrtf(root);
    float distance = along - root > near ? along - root : along + root;
    return distance > near ? distance : farAway;
}

/// The nearest sphere on the ray, or null, and its distance.
static const Sphere* nearestSphere(Vector from, Vector direction, float* distance) {
    const Sphere* nearest = NULL;
    *distance = farAway;
    for (int i = 0; i < sphereCount; i++) {
        float there = meetSphere(&spheres[i], from, direction);
        if (there < *distance) {
            *distance = there;
            nearest = &spheres[i];
        }
    }
    return nearest;
}

static bool inShadow(Vector point) {
    Vector sun = unit(towardsSun);
    for (int i = 0; i < sphereCount; i++)
        if (meetSphere(&spheres[i], point, sun) < farAway)
            return true;
    return false;
}

static Vector sky(Vector direction) {
    float height = direction.y < 0.0f ? 0.0f : direction.y;
    Vector light = mix(horizon, zenith, sqrtf(height));
    float towards = dot(direction, unit(towardsSun));
    return towards > 0.995f ? add(light, sunlight) : light;
}

/// Squares of two greys, which blend in the distance.
static Vector floorColour(Vector point, float distance) {
    int odd = ((int)floorf(point.x) ^ (int)floorf(point.z)) & 1;
    float grey = odd ? 0.16f : 0.72f;
    float haze = distance / (distance + 30.0f);
    return mix((Vector){grey, grey, grey}, (Vector){0.44f, 0.44f, 0.46f}, haze);
}

Vector lightAlong(float right, float up) {
    Vector from = eye;
    Vector direction = unit((Vector){right, up - 0.18f, 1.9f});
    Vector sun = unit(towardsSun);
    Vector sum = {0.0f, 0.0f, 0.0f};
    Vector share = {1.0f, 1.0f, 1.0f};
    for (int depth = 0; depth < deepest; depth++) {
        float distance;
        const Sphere* sphere = nearestSphere(from, direction, &distance);
        float down = direction.y < 0.0f ? -from.y / direction.y : farAway;
        bool onFloor = down > near && down < distance;
        if (!onFloor && sphere == NULL)
            return add(sum, multiply(share, sky(direction)));

        Vector point = add(from, scale(direction, onFloor ? down : distance));
        Vector normal = onFloor ? (Vector){0.0f, 1.0f, 0.0f}
                                : scale(subtract(point, sphere->centre), 1.0f / sphere->radius);
        Vector colour = onFloor ? floorColour(point, down) : sphere->colour;
        float mirror = onFloor ? 0.12f : sphere->mirror;

        // The sky lights everything a little, the sun only what it reaches.
        float slope = dot(normal, sun);
        Vector light = scale(horizon, 0.18f + 0.12f * normal.y);
        float shine = 0.0f;
        Vector reflected = subtract(direction, scale(normal, 2.0f * dot(direction, normal)));
        if (slope > 0.0f && !inShadow(point)) {
            light = add(light, scale(sunlight, slope));
            float towards = dot(reflected, sun);
            for (int i = 0; i < 5; i++)
                towards *= towards;  // the 32nd power
            if (!onFloor && dot(reflected, sun) > 0.0f)
                shine = 0.6f * towards;
        }
        Vector own = add(scale(multiply(colour, light), 1.0f - mirror), scale(sunlight, shine));
        sum = add(sum, multiply(share, own));
        share = multiply(
            share, scale(onFloor ? (Vector){1.0f, 1.0f, 1.0f} : mix((Vector){1.0f, 1.0f, 1.0f}, colour, 0.5f),
                         mirror));
        from = point;
        direction = reflected;
    }
    return sum;
}
