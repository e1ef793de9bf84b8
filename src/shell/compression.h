// Compressing what is written to a file, as the end of its name asks.
#pragma once

#include "shell/output_files.h"

#include <memory>
#include <string_view>

namespace tarn {

class Compressor {
  public:
    virtual ~Compressor() = default;

    /// Writes the bytes to the file, compressed and with a delay; all of them when they are the last. A
    /// failure is noted in the file.
    virtual void write(std::string_view bytes, bool last, OutputFile& file) = 0;
};

/// For a path that ends in .gz or .zst; null for any other.
std::unique_ptr<Compressor> compressorFor(std::string_view path);

}  // namespace tarn
