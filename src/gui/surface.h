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

/// Creates the surface of a picture. Its masks are the same at every depth, which SDL 1.2 allows; its
/// compatibility library refuses them with 15 bits, and the pixels, which have the same size, are of 16 bits
/// then. Returns null on failure.
inline SDL_Surface* createPicture(Uint32 flags, int width, int height, int depth, Uint32 alphaMask) {
    const auto create = [=](int bits) {
        return SDL_CreateRGBSurface(flags, width, height, bits, 0x00FF0000, 0x0000FF00, 0x000000FF,
                                    alphaMask);
    };
    SDL_Surface* const picture = create(depth);
    return picture == nullptr && depth == 15 ? create(16) : picture;
}

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
