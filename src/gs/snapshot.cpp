// Snapshots: local memory as a numbered BMP file.
#include "base/file.h"
#include "gs/gs.h"
#include "gs/host_pixels.h"
#include "gs/local_memory.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr u32 headerBytes = 54;
constexpr u32 trailerBytes = 2;
constexpr u32 pixelsPerMetre = 2834;

/// Stores a little-endian field of a BMP header.
template <typename Field>
void put(std::array<u8, headerBytes>& header, u32 offset, u32 value) {
    const Field field = static_cast<Field>(value);
    std::memcpy(&header[offset], &field, sizeof field);
}

std::array<u8, headerBytes> bmpHeader(u32 width, u32 height) {
    std::array<u8, headerBytes> header{'B', 'M'};
    put<u32>(header, 2, width * height * HostPixel24::bytes + headerBytes + trailerBytes);
    put<u32>(header, 10, headerBytes);  // offset of the pixels
    put<u32>(header, 14, 40);           // size of the information header
    put<u16>(header, 18, width);
    put<u16>(header, 22, height);
    put<u16>(header, 26, 1);   // planes
    put<u16>(header, 28, 24);  // bits per pixel
    put<u32>(header, 38, pixelsPerMetre);
    put<u32>(header, 42, pixelsPerMetre);
    return header;
}

std::string freeName(const char* prefix) {
    for (long n = 1;; ++n) {
        std::array<char, 32> number{};
        std::snprintf(number.data(), number.size(), "snap%03ld.bmp", n);
        const std::string name = std::string(prefix) + number.data();
        if (!FilePtr(std::fopen(name.c_str(), "rb"))) {
            return name;
        }
    }
}

}  // namespace

bool GSmakeSnapshot(const char* prefix) {
    if (Gs.vRam == nullptr) {
        return false;
    }
    const u32 width = Gs.gsdspfb().fbw;
    const u32 height = width == 0 ? 0 : Gs.gsdspfb().maxRows;
    FilePtr file(std::fopen(freeName(prefix).c_str(), "wb"));
    if (!file) {
        return false;
    }
    const auto header = bmpHeader(width, Gs.gsdspfb().maxRows);
    std::fwrite(header.data(), header.size(), 1, file.get());
    std::vector<u8> row(std::size_t{width} * HostPixel24::bytes);
    for (u32 y = height; y-- > 0;) {
        convertPixels<HostPixel24>(row.data(), &localWord(y * width), width);
        std::fwrite(row.data(), row.size(), 1, file.get());
    }
    const std::array<u8, trailerBytes> trailer{};
    std::fwrite(trailer.data(), trailer.size(), 1, file.get());
    const bool written = std::ferror(file.get()) == 0;
    return std::fclose(file.release()) == 0 && written;
}

}  // namespace tarn
