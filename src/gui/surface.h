// RAII types for SDL surfaces and their locks.
#pragma once

#include <SDL.h>
#include <memory>

namespace tarn {

struct SurfaceFreer {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

/// An owned surface.
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceFreer>;

/// Locks a surface while it exists, if SDL requires that, or only if `needed`.
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
