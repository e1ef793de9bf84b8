// The files that a run without a window leaves behind.
#pragma once

#include "base/file.h"

#include <SDL.h>
#include <span>
#include <string>

namespace tarn {

/// A file being written. Whatever goes wrong on the way is reported once, on standard error, when it is
/// closed.
class OutputFile {
  public:
    /// Opens the file for writing; a failure shows when it is closed.
    void open(const std::string& filePath);

    bool isOpen() const { return file != nullptr; }
    void write(const void* bytes, std::size_t count);

    /// The stream, for those who write to it themselves and note their failures; null when it is not open.
    std::FILE* stream() const { return file.get(); }
    /// Keeps the first failure's errno.
    void noteFailure();

    /// Completes the file; false, with a message, when something of it is lost.
    bool close();

  private:
    std::string path;
    FilePtr file;
    int error = 0;  ///< errno of the first failure
};

/// Each writes one file; false, with a message, when something of it is lost.
bool writeBytes(const std::string& path, std::span<const unsigned char> bytes);
bool writePicture(const std::string& path, SDL_Surface* surface);

/// Reports on standard error that a file cannot be written; false.
bool reportLostOutput(const char* path, const char* reason);

}  // namespace tarn
