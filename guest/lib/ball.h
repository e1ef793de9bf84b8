// The picture of a ball, for sprites.
#pragma once

#include "types.h"

/// Light at texel (x, y) of a ball `size` texels wide, lit from the upper left: 16 to 255, 0 outside it.
u32 ballLight(u32 x, u32 y, u32 size);
