// A compressed stream of bytes, in base 64.
#include "recording/deflated.h"

#include <array>
#include <zlib.h>

namespace tarn::recording {

void Deflated::StreamEnd::operator()(z_stream_s* ended) const {
    deflateEnd(ended);
    delete ended;
}

Deflated::Deflated() : stream(new z_stream{}) { deflateInit(stream.get(), Z_BEST_COMPRESSION); }

void Deflated::deflate(std::span<const u8> bytes, bool last) {
    // zlib's type is not const, but it does not write there.
    stream->next_in = const_cast<u8*>(bytes.data());
    stream->avail_in = static_cast<uInt>(bytes.size());
    int result = Z_OK;
    std::array<u8, 1 << 16> block{};
    do {
        stream->next_out = block.data();
        stream->avail_out = static_cast<uInt>(block.size());
        result = ::deflate(stream.get(), last ? Z_FINISH : Z_NO_FLUSH);
        compressed.insert(compressed.end(), block.begin(), block.end() - stream->avail_out);
    } while (result == Z_OK && (stream->avail_out == 0 || last));
}

std::string Deflated::finish() {
    deflate({}, true);
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < compressed.size(); i += 3) {
        u32 group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = group << 8 | (i + k < compressed.size() ? compressed[i + k] : 0U);
        }
        for (unsigned k = 0; k < 4; ++k) {
            text += i + k <= compressed.size() ? digits[group >> (18 - 6 * k) & 63] : '=';
        }
    }
    return text;
}

}  // namespace tarn::recording
