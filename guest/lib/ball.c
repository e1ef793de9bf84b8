// A ball's light, by distances in half texels.
#include "ball.h"

u32 ballLight(u32 x, u32 y, u32 size) {
    s32 dx = 2 * (s32)x - (s32)(size - 1);
    s32 dy = 2 * (s32)y - (s32)(size - 1);
    s32 radius = (s32)size - 1;
    if (dx * dx + dy * dy > radius * radius)
        return 0;
    s32 spot = radius / 3;
    s32 fromSpot = (dx + spot) * (dx + spot) + (dy + spot) * (dy + spot);
    s32 light = 255 - fromSpot * 150 / (radius * radius);
    return light < 16 ? 16 : light;
}
