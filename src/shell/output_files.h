// The files that a run without a window leaves behind.
#pragma once

#include "base/file.h"

#include <SDL.h>
#include <string>
#include <string_view>

namespace tarn {

/// A file being written. Whatever goes wrong on the way is reported once, on standard error, when it is
/// closed.
class OutputFile {
  public:
    /// Opens the file for writing, or standard output for the path "-"; a failure shows when it is closed.
    void open(const std::string& filePath);

    bool isOpen() const { return file != nullptr; }
    void write(const void* bytes, std::size_t count);

    /// The stream, for those who write to it themselves and note their failures; null when it is not open.
    std::FILE* stream() const { return file.get(); }
    /// Keeps errno as the reason.
    void noteFailure();

    /// Keeps a reason that is not in errno; the first reason counts.
    void noteFailure(const char* text);

    /// Completes the file; false, with a message, when something of it is lost.
    bool close();

  private:
    std::string path;
    FilePtr file;
    std::string failure;  ///< the first one
};

/// Whether a picture of that name is to be a PNG file; it is a BMP file otherwise.
bool isPngName(std::string_view path);

/// Writes a picture to an open file, which still has to be closed: as PNG when `asPng`.
void writePicture(OutputFile& file, SDL_Surface* surface, bool asPng);

/// Writes a picture to the file of that name; false, with a message, when it is not written.
bool writePicture(const std::string& path, SDL_Surface* surface);

/// The program, as its messages begin.
inline const char* commandName = "tarn-headless";

/// Reports on standard error that a file cannot be written; false.
bool reportLostOutput(const char* path, const char* reason);

}  // namespace tarn
