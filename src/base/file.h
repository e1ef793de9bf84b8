// An owning file handle, and opening input files.
#pragma once

#include <cstdio>
#include <memory>

namespace tarn {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An owned stdio stream; null if none is open.
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for binary reading, at its start. Returns null and sets errno on failure, and for anything
/// that is not a seekable file: a directory, FIFO, socket or terminal.
FilePtr openInputFile(const char* path);

}  // namespace tarn
