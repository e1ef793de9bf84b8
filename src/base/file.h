// Owns the owning file handle, and declares the opening of input files.
#pragma once

#include <cstdio>
#include <memory>

namespace tarn {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A stdio stream that closes itself; null when nothing is open.
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for binary reading, at its start. Null with errno set when that fails, and for what is no
/// file to load from: a directory, or a FIFO, socket or terminal, which has no size and might be waited for.
FilePtr openInputFile(const char* path);

}  // namespace tarn
