// Output files.
#pragma once

#include "base/file.h"

#include <SDL.h>
#include <string>
#include <string_view>

namespace tarn {

/// An output file. The first error is reported on standard error when the file is closed.
class OutputFile {
  public:
    /// Opens the file for writing, or standard output for the path "-". An error is reported by close().
    void open(const std::string& filePath);

    bool isOpen() const { return file != nullptr; }
    void write(const void* bytes, std::size_t count);

    /// The stream, for code that writes to it directly and notes failures; null if it is not open.
    std::FILE* stream() const { return file.get(); }
    /// Notes errno as the reason.
    void noteFailure();

    /// Notes another reason. The first reason is reported.
    void noteFailure(const char* text);

    /// Closes the file. Returns false after a message if data are lost.
    bool close();

  private:
    std::string path;
    FilePtr file;
    std::string failure;  ///< the first one
};

/// Whether a picture of that name is a PNG file rather than a BMP file.
bool isPngName(std::string_view path);

/// Writes a picture to an open file, as PNG if `asPng`. Does not close it.
void writePicture(OutputFile& file, SDL_Surface* surface, bool asPng);

/// Writes a picture to the file of that name. Returns false after a message on failure.
bool writePicture(const std::string& path, SDL_Surface* surface);

/// The name of the program, with which its messages begin.
inline const char* commandName = "tarn-headless";

/// Reports on standard error that a file cannot be written. Returns false.
bool reportLostOutput(const char* path, const char* reason);

}  // namespace tarn
