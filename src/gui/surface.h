// Owners of SDL surfaces: the surface itself, and its lock.
#pragma once

#include <SDL.h>
#include <memory>

namespace tarn {

struct SurfaceFreer {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

/// A surface that is freed with its owner.
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceFreer>;

/// Locks a surface for as long as the object lives, when SDL requires it, or only when `needed` holds.
class SurfaceLock {
  public:
    explicit SurfaceLock(SDL_Surface* surface) : SurfaceLock(surface, SDL_MUSTLOCK(surface)) {}
    SurfaceLock(SDL_Surface* surface, bool needed)
        : locked(needed && SDL_LockSurface(surface) == 0 ? surface : nullptr) {}
    ~SurfaceLock() {
        if (locked != nullptr) {
            SDL_UnlockSurface(locked);
        }
    }
    SurfaceLock(const SurfaceLock&) = delete;
    SurfaceLock& operator=(const SurfaceLock&) = delete;

  private:
    SDL_Surface* locked;
};

}  // namespace tarn
