// The writing of result files, with every error found and reported.
#include "shell/output_files.h"

#include <cerrno>
#include <cstring>
#include <memory>

namespace tarn {
namespace {

struct SurfaceFreer {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceFreer>;

/// A view of MainScreen's pixels with the masks that they really have; those of the surface are the same at
/// every depth.
SurfacePtr trueColours(SDL_Surface* surface) {
    const int depth = surface->format->BitsPerPixel;
    SDL_Surface* view = nullptr;
    if (depth == 15) {
        view = SDL_CreateRGBSurfaceFrom(surface->pixels, surface->w, surface->h, depth, surface->pitch,
                                        0x7C00, 0x03E0, 0x001F, 0);
    } else if (depth == 16) {
        view = SDL_CreateRGBSurfaceFrom(surface->pixels, surface->w, surface->h, depth, surface->pitch,
                                        0xF800, 0x07E0, 0x001F, 0);
    } else {
        view = surface;
        ++surface->refcount;
    }
    return SurfacePtr(view);
}

}  // namespace

bool reportLostOutput(const char* path, const char* reason) {
    std::fprintf(stderr, "tarn-headless: cannot write %s: %s\n", path, reason);
    return false;
}

void OutputFile::open(const std::string& filePath) {
    path = filePath;
    file.reset(std::fopen(path.c_str(), "wbe"));
    error = file != nullptr ? 0 : errno;
}

void OutputFile::write(const void* bytes, std::size_t count) {
    if (file != nullptr && std::fwrite(bytes, 1, count, file.get()) != count) {
        noteFailure();
    }
}

void OutputFile::noteFailure() {
    if (error == 0) {
        error = errno != 0 ? errno : EIO;
    }
}

bool OutputFile::close() {
    if (file != nullptr) {
        errno = 0;
        const bool failed = std::ferror(file.get()) != 0;
        if (std::fclose(file.release()) != 0 || failed) {
            noteFailure();
        }
    }
    return error == 0 || reportLostOutput(path.c_str(), std::strerror(error));
}

bool writeBytes(const std::string& path, std::span<const unsigned char> bytes) {
    OutputFile file;
    file.open(path);
    file.write(bytes.data(), bytes.size());
    return file.close();
}

bool writePicture(const std::string& path, SDL_Surface* surface) {
    if (surface == nullptr) {
        return reportLostOutput(path.c_str(), "there is no picture");
    }
    OutputFile file;
    file.open(path);
    if (file.stream() != nullptr) {
        errno = 0;
        if (SDL_SaveBMP_RW(trueColours(surface).get(), SDL_RWFromFP(file.stream(), 0), 1) != 0) {
            if (errno == 0) {
                return file.close() && reportLostOutput(path.c_str(), SDL_GetError());
            }
            file.noteFailure();
        }
    }
    return file.close();
}

}  // namespace tarn
