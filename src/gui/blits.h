// Copying between surfaces and filling rectangles.
#pragma once

#include "base/types.h"

#include <SDL.h>
#include <vector>

namespace tarn {

/// What SDL_UpperBlit shows, at the speed of a copy in two cases for which SDL has only its general
/// conversion: opaque pictures whose 32-bit format differs in the order of red and blue, and ones with a
/// colour key whose 32-bit format does not differ. `part` of `source` (all of it if null) goes to the
/// top-left corner of `place` (0, 0 if null), which leaves as the rectangle that has been written.
void blit(SDL_Surface* source, const SDL_Rect* part, SDL_Surface* destination, SDL_Rect* place);

/// The blit of a whole opaque picture to a surface of the same 32-bit format, leaving out what is there
/// already: `shown` has the pixels of the last time (it is empty if there was none) and is brought up to
/// date. `place` leaves as the rectangle around the rows that have changed. Does nothing and returns false
/// for other formats.
bool blitChanges(SDL_Surface* source, SDL_Surface* destination, SDL_Rect* place, std::vector<u8>& shown);

/// What SDL_FillRect does, faster where pixels are 32 bits.
void fill(SDL_Surface* surface, const SDL_Rect& rectangle, u32 pixel);

}  // namespace tarn
