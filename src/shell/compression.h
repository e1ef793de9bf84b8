// Compressing output files, depending on their names.
#pragma once

#include "shell/output_files.h"

#include <memory>
#include <string_view>

namespace tarn {

class Compressor {
  public:
    virtual ~Compressor() = default;

    /// Compresses bytes to the file, possibly with a delay; the `last` bytes complete it. Errors are noted in
    /// the file.
    virtual void write(std::string_view bytes, bool last, OutputFile& file) = 0;
};

/// The compressor for a path that ends in .gz or .zst; null for other paths.
std::unique_ptr<Compressor> compressorFor(std::string_view path);

}  // namespace tarn
