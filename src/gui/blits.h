// Copying between surfaces and filling rectangles.
#pragma once

#include "base/types.h"

#include <SDL.h>
#include <vector>

namespace tarn {

/// Like SDL_UpperBlit, but as fast as a copy in two cases for which SDL uses a general conversion: opaque
/// pictures in 32-bit formats that differ in the order of red and blue, and pictures with a colour key in the
/// same 32-bit format. Copies `part` of `source` (all of it if null) to the top-left corner of `place` (0, 0
/// if null), which is set to the rectangle written.
void blit(SDL_Surface* source, const SDL_Rect* part, SDL_Surface* destination, SDL_Rect* place);

/// Copies those parts of an opaque picture that have changed to a surface of the same 32-bit format. `shown`
/// has the pixels of the last call (empty at first) and is updated. `place` is set to the rectangle around
/// the changed rows. Does nothing and returns false for other formats.
bool blitChanges(SDL_Surface* source, SDL_Surface* destination, SDL_Rect* place, std::vector<u8>& shown);

/// Like SDL_FillRect, but faster for 32-bit pixels.
void fill(SDL_Surface* surface, const SDL_Rect& rectangle, u32 pixel);

}  // namespace tarn
