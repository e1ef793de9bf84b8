// Reading BMP files. They are checked first, because SDL 1.2's reader trusts the sizes in the file.
#include "gui/bmp_file.h"

#include "base/file.h"

#include <array>
#include <bit>
#include <cstdio>
#include <vector>

namespace tarn {
namespace {

constexpr u32 magic = 'B' | 'M' << 8;
constexpr std::size_t fileHeaderSize = 14;
constexpr std::size_t largestFile = 64 << 20;  // bytes; no font comes near
constexpr s64 largestSide = 16383;             // pixels, SDL's limit for a surface's width
constexpr u32 bitFields = 3;                   // compression of pixels with masks in the header

/// `count` bytes at `offset`, least significant first; zeros beyond the end.
u32 little(std::span<const u8> file, std::size_t offset, std::size_t count) {
    u32 value = 0;
    for (std::size_t i = 0; i < count && offset + i < file.size(); ++i) {
        value |= static_cast<u32>(file[offset + i]) << (8 * i);
    }
    return value;
}

/// The file's bytes; nothing if it cannot be read or is too large.
std::vector<u8> readFile(const char* path) {
    std::vector<u8> bytes;
    const FilePtr file = openInputFile(path);
    if (file != nullptr) {
        u8 block[4096];
        std::size_t count = 0;
        while ((count = std::fread(block, 1, sizeof block, file.get())) > 0) {
            bytes.insert(bytes.end(), block, block + count);
            if (bytes.size() > largestFile) {
                return {};
            }
        }
    }
    return bytes;
}

/// Whether SDL can use three words as masks of red, green and blue: up to eight contiguous bits each, without
/// overlap.
bool areSaneMasks(const std::array<u32, 3>& masks) {
    u32 taken = 0;
    for (const u32 mask : masks) {
        const int width = std::popcount(mask);
        if (width == 0 || width > 8 || mask >> std::countr_zero(mask) != (1U << width) - 1 ||
            (mask & taken) != 0) {
            return false;
        }
        taken |= mask;
    }
    return true;
}

}  // namespace

bool isSaneBmp(std::span<const u8> file) {
    const u64 pixelOffset = little(file, 10, 4);
    const u64 headerSize = little(file, fileHeaderSize, 4);
    const bool old = headerSize == 12;  // with sides of two bytes
    const s64 width = old ? little(file, 18, 2) : static_cast<s32>(little(file, 18, 4));
    const s64 signedHeight = old ? little(file, 20, 2) : static_cast<s32>(little(file, 22, 4));
    const s64 height = signedHeight < 0 ? -signedHeight : signedHeight;  // negative: top row first
    const u32 depth = little(file, old ? 24 : 28, 2);
    const u32 compression = old ? 0 : little(file, 30, 4);
    const u64 colours = old ? 0 : little(file, 46, 4);

    if (little(file, 0, 2) != magic || !(old || (headerSize >= 40 && headerSize <= 124)) ||
        !(compression == 0 || (compression == bitFields && (depth == 16 || depth == 32)))) {
        return false;
    }
    if (width < 1 || height < 1 || width > largestSide || height > largestSide) {
        return false;
    }
    switch (depth) {
    case 1:
    case 4:
    case 8:
        if (colours > (u64{1} << depth)) {
            return false;
        }
        break;
    case 16:
    case 32:
        // SDL also reads masks from a gap before the pixels.
        if (compression == bitFields || pixelOffset != fileHeaderSize + headerSize) {
            const std::size_t masks = fileHeaderSize + (old ? 12 : 40);
            if (!areSaneMasks(
                    {little(file, masks, 4), little(file, masks + 4, 4), little(file, masks + 8, 4)})) {
                return false;
            }
        }
        break;
    case 24:
        break;
    default:
        return false;
    }
    const u64 rowBytes = (static_cast<u64>(width) * depth + 31) / 32 * 4;
    return pixelOffset >= fileHeaderSize + headerSize &&
           pixelOffset + rowBytes * static_cast<u64>(height) <= file.size();
}

SurfacePtr loadBmpFile(const char* path) {
    const std::vector<u8> file = readFile(path);
    if (!isSaneBmp(file)) {
        return nullptr;
    }
    return SurfacePtr(SDL_LoadBMP_RW(SDL_RWFromConstMem(file.data(), static_cast<int>(file.size())), 1));
}

}  // namespace tarn
