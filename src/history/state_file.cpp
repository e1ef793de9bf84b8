// State files: a header, then the compressed records and buffers.
#include "history/state_file.h"

#include "base/checksum.h"
#include "base/file.h"
#include "gs/display.h"
#include "history/machine_state.h"
#include "machine/machine.h"
#include "machine/settings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <zstd.h>

namespace tarn::history {
namespace {

constexpr std::array<char, 8> magicWord = {'T', 'A', 'R', 'N', 'S', 'T', 'A', 'T'};
constexpr u32 version = 1;  ///< increase it when the list of fields changes
constexpr int compressionLevel = 1;
constexpr std::size_t largestPicture = 256U << 20;
constexpr std::size_t largestFile = 512U << 20;

struct Header {
    std::array<char, 8> magic = magicWord;
    u32 formatVersion = version;
    u32 records = 0;  ///< bytes
    u64 program = 0;
    u64 picture = 0;  ///< bytes
    u64 completeCpu = 0;
};

std::size_t bufferBytes() {
    std::size_t bytes = 0;
    for (const std::span<u8> buffer : buffersOf(machine)) {
        bytes += buffer.size();
    }
    return bytes;
}

/// What is wrong with a header, or null.
const char* complaintAbout(const Header& header, u64 program) {
    if (header.magic != magicWord) {
        return "it is not a saved state";
    }
    if (header.formatVersion != version || header.records != recordBytes()) {
        return "it was saved by another version of the emulator";
    }
    if (header.program != program) {
        return "it is the state of another program";
    }
    if (header.completeCpu != (Settings.completeCpu == 1 ? 1 : 0)) {
        return header.completeCpu != 0 ? "it was saved with the complete processor (--complete-cpu)"
                                       : "it was saved with the default processor, without --complete-cpu";
    }
    return header.picture > largestPicture ? "it is damaged" : nullptr;
}

}  // namespace

std::optional<std::string> readStateFile(const char* path, std::vector<u8>& bytes) {
    const FilePtr file = openInputFile(path);
    if (file == nullptr) {
        return std::strerror(errno);
    }
    bytes.clear();
    for (std::array<u8, 1 << 16> block{};;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
        if (count == 0) {
            break;
        }
        if (bytes.size() > largestFile) {
            return "it is too long";
        }
    }
    return std::ferror(file.get()) != 0 ? std::optional<std::string>("it cannot be read") : std::nullopt;
}

u64 programIdentity(const char* path) {
    std::vector<u8> bytes;
    return readStateFile(path, bytes) ? 0 : checksumOf(bytes);
}

std::vector<u8> packState(u64 program, std::span<const u8> picture) {
    const std::vector<u8> records = saveRecords(machine);
    std::vector<std::span<const u8>> parts{records};
    for (const std::span<u8> buffer : buffersOf(machine)) {
        parts.emplace_back(buffer);
    }
    parts.push_back(picture);
    Header header;
    header.records = static_cast<u32>(records.size());
    header.program = program;
    header.picture = picture.size();
    header.completeCpu = Settings.completeCpu == 1 ? 1 : 0;

    std::vector<u8> bytes(sizeof header);
    std::memcpy(bytes.data(), &header, sizeof header);
    const std::unique_ptr<ZSTD_CCtx, std::size_t (*)(ZSTD_CCtx*)> context(ZSTD_createCCtx(), ZSTD_freeCCtx);
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_compressionLevel, compressionLevel);
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);  // checked by ZSTD_decompress
    std::vector<u8> block(ZSTD_CStreamOutSize());
    for (const std::span<const u8>& part : parts) {
        const ZSTD_EndDirective end = &part == &parts.back() ? ZSTD_e_end : ZSTD_e_continue;
        ZSTD_inBuffer input{part.data(), part.size(), 0};
        std::size_t left = 0;
        do {
            ZSTD_outBuffer output{block.data(), block.size(), 0};
            left = ZSTD_compressStream2(context.get(), &output, &input, end);
            if (ZSTD_isError(left) != 0) {
                return {};
            }
            bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(output.pos));
        } while (input.pos < input.size || (end == ZSTD_e_end && left != 0));
    }
    return bytes;
}

std::optional<std::string> unpackState(std::span<const u8> bytes, u64 program, std::span<u8> picture) {
    Header header;
    if (bytes.size() < sizeof header) {
        return "it is not a saved state";
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (const char* complaint = complaintAbout(header, program)) {
        return complaint;
    }
    bytes = bytes.subspan(sizeof header);
    const std::size_t expected = header.records + bufferBytes() + header.picture;
    const std::unique_ptr<u8[]> content = std::make_unique_for_overwrite<u8[]>(expected);
    // The library refuses a frame whose contents do not fit.
    const std::size_t size = ZSTD_decompress(content.get(), expected, bytes.data(), bytes.size());
    if (ZSTD_isError(size) != 0 || size != expected) {
        return "it is damaged";
    }
    std::span<const u8> rest(content.get(), expected);
    if (!restoreForeignRecords(machine, rest.first(header.records))) {
        return "it is damaged";
    }
    rest = rest.subspan(header.records);
    forgetPicture();
    for (const std::span<u8> buffer : buffersOf(machine)) {
        std::memcpy(buffer.data(), rest.data(), buffer.size());
        rest = rest.subspan(buffer.size());
    }
    if (rest.size() == picture.size()) {
        std::copy(rest.begin(), rest.end(), picture.begin());
    }
    return std::nullopt;
}

}  // namespace tarn::history
