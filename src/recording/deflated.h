// A compressed stream of bytes, in base 64.
#pragma once

#include "base/object_bytes.h"
#include "base/types.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct z_stream_s;

namespace tarn::recording {

/// Compresses in zlib's format.
class Deflated {
  public:
    Deflated();

    void add(std::span<const u8> bytes) { deflate(bytes, false); }
    void add(std::string_view text) { add(bytesOfElements(text)); }

    /// The number of bytes so far, possibly without the last few.
    std::size_t size() const { return compressed.size(); }

    /// The whole stream in base 64.
    std::string finish();

  private:
    void deflate(std::span<const u8> bytes, bool last);

    struct StreamEnd {
        void operator()(z_stream_s* stream) const;
    };
    std::unique_ptr<z_stream_s, StreamEnd> stream;
    std::vector<u8> compressed;
};

}  // namespace tarn::recording
