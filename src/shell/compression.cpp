// Compressing with zlib and libzstd.
#include "shell/compression.h"

#include "base/types.h"

#include <array>
#include <vector>
#include <zlib.h>
#include <zstd.h>

namespace tarn {
namespace {

class GzipCompressor final : public Compressor {
  public:
    GzipCompressor() {
        constexpr int asGzip = 16;
        constexpr int defaultMemory = 8;
        isUsable = deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + asGzip, defaultMemory,
                                Z_DEFAULT_STRATEGY) == Z_OK;
    }
    ~GzipCompressor() override { deflateEnd(&stream); }

    void write(std::string_view bytes, bool last, OutputFile& file) override {
        if (!isUsable) {
            file.noteFailure("zlib has no memory");
            return;
        }
        // zlib's type is not const, but it does not write there.
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
        stream.avail_in = static_cast<uInt>(bytes.size());
        do {
            stream.next_out = compressed.data();
            stream.avail_out = static_cast<uInt>(compressed.size());
            deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH);
            file.write(compressed.data(), compressed.size() - stream.avail_out);
        } while (stream.avail_out == 0);
    }

  private:
    z_stream stream{};
    std::array<Bytef, 1 << 16> compressed{};
    bool isUsable = false;
};

class ZstdCompressor final : public Compressor {
  public:
    ZstdCompressor() {
        ZSTD_CCtx_setParameter(context.get(), ZSTD_c_compressionLevel, 1);
        ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
    }

    void write(std::string_view bytes, bool last, OutputFile& file) override {
        ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
        std::size_t left = 0;
        do {
            ZSTD_outBuffer out{compressed.data(), compressed.size(), 0};
            left = ZSTD_compressStream2(context.get(), &out, &in, last ? ZSTD_e_end : ZSTD_e_continue);
            if (ZSTD_isError(left) != 0) {
                file.noteFailure(ZSTD_getErrorName(left));
                return;
            }
            file.write(compressed.data(), out.pos);
        } while (last ? left != 0 : in.pos < in.size);
    }

  private:
    struct Freer {
        void operator()(ZSTD_CCtx* owned) const { ZSTD_freeCCtx(owned); }
    };
    std::unique_ptr<ZSTD_CCtx, Freer> context{ZSTD_createCCtx()};
    std::vector<char> compressed = std::vector<char>(ZSTD_CStreamOutSize());
};

}  // namespace

std::unique_ptr<Compressor> compressorFor(std::string_view path) {
    if (path.ends_with(".gz")) {
        return std::make_unique<GzipCompressor>();
    }
    if (path.ends_with(".zst")) {
        return std::make_unique<ZstdCompressor>();
    }
    return nullptr;
}

}  // namespace tarn
