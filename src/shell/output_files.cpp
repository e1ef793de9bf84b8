// Writing output files, reporting all errors.
#include "shell/output_files.h"

#include "base/png_file.h"
#include "gs/display.h"
#include "gui/surface.h"
#include "machine/settings.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace tarn {
namespace {

/// A view of MainScreen's pixels with their actual masks. The surface has the same masks at every depth.
SurfacePtr trueColours(SDL_Surface* surface) {
    const int declared = surface->format->BitsPerPixel;
    const int depth =
        declared == 16 && Settings.koGUI_MainScreenBPP == 15 ? 15 : declared;  // see createPicture
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

/// The picture's pixels as red, green and blue bytes.
bool writeAsPng(std::FILE* file, SDL_Surface* view) {
    constexpr std::size_t pixelBytes = 3;
    const SurfacePtr bytes(
        SDL_CreateRGBSurface(SDL_SWSURFACE, view->w, view->h, 24, 0x0000FF, 0x00FF00, 0xFF0000, 0));
    if (bytes == nullptr || SDL_BlitSurface(view, nullptr, bytes.get(), nullptr) != 0) {
        return false;
    }
    const std::size_t row = static_cast<std::size_t>(view->w) * pixelBytes;
    std::vector<u8> pixels(row * static_cast<std::size_t>(view->h));
    for (std::size_t y = 0; y * row < pixels.size(); ++y) {
        std::memcpy(&pixels[y * row], static_cast<const u8*>(bytes->pixels) + y * bytes->pitch, row);
    }
    return writePng(file, static_cast<u32>(view->w), static_cast<u32>(view->h), pixels);
}

/// Written to memory first: SDL seeks back in its output, which fails on a pipe.
bool writeAsBmp(std::FILE* file, SDL_Surface* view) {
    constexpr std::size_t headerAndPalette = 2048;  // more than any file has
    std::vector<u8> bytes(headerAndPalette + static_cast<std::size_t>(view->w) *
                                                 static_cast<std::size_t>(view->h + 1) * sizeof(u32));
    SDL_RWops* memory = SDL_RWFromMem(bytes.data(), static_cast<int>(bytes.size()));
    if (memory == nullptr || SDL_SaveBMP_RW(view, memory, 1) != 0) {
        return false;
    }
    u32 size = 0;
    std::memcpy(&size, &bytes[2], sizeof size);  // from the file's header
    return size <= bytes.size() && std::fwrite(bytes.data(), 1, size, file) == size;
}

}  // namespace

bool reportLostOutput(const char* path, const char* reason) {
    std::fprintf(stderr, "%s: cannot write %s: %s\n", commandName, path, reason);
    return false;
}

void OutputFile::open(const std::string& filePath) {
    const bool isStandardOutput = filePath == "-";
    path = isStandardOutput ? "standard output" : filePath;
    failure.clear();
    // A separate descriptor, so that closing it leaves standard output open.
    file.reset(isStandardOutput ? fdopen(dup(STDOUT_FILENO), "wb") : std::fopen(path.c_str(), "wbe"));
    if (file == nullptr) {
        noteFailure();
    }
}

void OutputFile::write(const void* bytes, std::size_t count) {
    if (file != nullptr && std::fwrite(bytes, 1, count, file.get()) != count) {
        noteFailure();
    }
}

void OutputFile::noteFailure() { noteFailure(std::strerror(errno != 0 ? errno : EIO)); }

void OutputFile::noteFailure(const char* text) {
    if (failure.empty()) {
        failure = text;
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
    return failure.empty() || reportLostOutput(path.c_str(), failure.c_str());
}

bool isPngName(std::string_view path) { return path.ends_with(".png"); }

void writePicture(OutputFile& file, SDL_Surface* surface, bool asPng) {
    if (file.stream() == nullptr) {
        return;
    }
    if (surface == nullptr) {
        file.noteFailure("there is no picture");
        return;
    }
    presentPicture();
    errno = 0;
    SDL_ClearError();
    const SurfacePtr view = trueColours(surface);
    const bool written =
        asPng ? writeAsPng(file.stream(), view.get()) : writeAsBmp(file.stream(), view.get());
    if (!written && errno != 0) {
        file.noteFailure();
    } else if (!written) {
        file.noteFailure(*SDL_GetError() != '\0' ? SDL_GetError() : "it cannot be made a PNG file");
    }
}

bool writePicture(const std::string& path, SDL_Surface* surface) {
    OutputFile file;
    file.open(path);
    writePicture(file, surface, isPngName(path));
    return file.close();
}

}  // namespace tarn
