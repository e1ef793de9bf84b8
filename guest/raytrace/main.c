// Ray tracing: spheres over a chequered floor, with shadows and reflections. The picture is drawn in squares
// of decreasing size, then its edges are smoothed.
//
// Plain C with ordinary operators on floats, so it needs the complete processor (tarn-guest-build
// --complete-cpu, Complete_cpu = 1 in tarn.ini).
#include "scene.h"
#include "tarn_guest.h"

#include <stdbool.h>
#include <stdlib.h>

enum { width = 320, height = 240, coarsest = 8, samples = 4, contrast = 24 };

/// A channel of a colour, gamma-corrected.
static u32 channel(float light) {
    float shown = sqrtf(light < 0.0f ? 0.0f : light > 1.0f ? 1.0f : light);
    return (u32)(shown * 255.0f + 0.5f);
}

static u32 colourOf(Vector light) {
    return gsColour(channel(light.x), channel(light.y), channel(light.z), 0x80);
}

/// The light through a point of the picture, in pixels from its upper left corner.
static Vector lightAt(float x, float y) {
    float right = (x - width / 2) / (height / 2);
    float up = (height / 2 - y) / (height / 2);
    return lightAlong(right, up);
}

/// Traces a ray for each square, except for those already traced at twice the size.
static void drawSquares(const Canvas* canvas, u32 size) {
    for (u32 y = 0; y < height; y += size)
        for (u32 x = 0; x < width; x += size) {
            bool known = size < coarsest && x % (2 * size) == 0 && y % (2 * size) == 0;
            if (!known) {
                Vector light = lightAt((float)x + 0.5f, (float)y + 0.5f);
                fillRectangle(canvas, x, y, size, size, colourOf(light));
            }
        }
}

static bool differ(u32 a, u32 b) {
    for (u32 shift = 0; shift < 24; shift += 8)
        if (abs((int)(a >> shift & 0xFF) - (int)(b >> shift & 0xFF)) > contrast)
            return true;
    return false;
}

/// Replaces pixels that differ from a neighbour by the mean of several rays.
static void smooth(const Canvas* canvas) {
    Canvas sharp = newCanvas(width, height);
    memcpy(sharp.pixels, canvas->pixels, width * height * sizeof(u32));
    for (u32 y = 1; y < height - 1; y++) {
        const u32* above = canvasRow(&sharp, y - 1);
        const u32* row = canvasRow(&sharp, y);
        const u32* below = canvasRow(&sharp, y + 1);
        for (u32 x = 1; x < width - 1; x++) {
            if (!differ(row[x], row[x - 1]) && !differ(row[x], row[x + 1]) && !differ(row[x], above[x]) &&
                !differ(row[x], below[x]))
                continue;
            Vector sum = {0.0f, 0.0f, 0.0f};
            for (u32 i = 0; i < samples; i++) {
                float right = i % 2 == 0 ? 0.25f : 0.75f;
                float down = i < 2 ? 0.25f : 0.75f;
                sum = add(sum, lightAt((float)x + right, (float)y + down));
            }
            canvasRow(canvas, y)[x] = colourOf(scale(sum, 1.0f / samples));
        }
    }
}

int main(void) {
    Canvas canvas = newCanvas(width, height);
    for (u32 size = coarsest; size != 0; size /= 2) {
        drawSquares(&canvas, size);
        showCanvas(&canvas);
    }
    smooth(&canvas);
    showCanvas(&canvas);
    waitFrame();  // so that the picture is shown before the processor stops
    return 0;
}
