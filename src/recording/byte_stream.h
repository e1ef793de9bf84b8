// Appending values to a vector of bytes, and taking them from a span of bytes with every length checked.
#pragma once

#include "base/types.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tarn::recording {

class ByteWriter {
  public:
    explicit ByteWriter(std::vector<u8>& target) : bytes(target) {}

    template <typename T>
    void value(T number) {
        static_assert(std::is_integral_v<T>);
        std::array<u8, sizeof number> raw{};
        std::memcpy(raw.data(), &number, sizeof number);
        data(raw);
    }
    /// Seven bits per byte, lowest first; the last byte is below 0x80.
    void number(u64 rest) {
        for (; rest >= 0x80; rest >>= 7) {
            bytes.push_back(static_cast<u8>(rest | 0x80));
        }
        bytes.push_back(static_cast<u8>(rest));
    }
    void text(std::string_view string) {
        number(string.size());
        bytes.insert(bytes.end(), string.begin(), string.end());
    }
    void data(std::span<const u8> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

  private:
    std::vector<u8>& bytes;
};

/// Once a value is incomplete, it and all later ones are 0 or empty, and the reader has failed.
class ByteReader {
  public:
    explicit ByteReader(std::span<const u8> source) : rest(source) {}

    bool failed() const { return incomplete; }
    bool atEnd() const { return rest.empty(); }
    std::size_t left() const { return rest.size(); }

    template <typename T>
    T value() {
        static_assert(std::is_integral_v<T>);
        T number = 0;
        if (const std::span<const u8> raw = data(sizeof number); !raw.empty()) {
            std::memcpy(&number, raw.data(), sizeof number);
        }
        return number;
    }
    u64 number() {
        u64 result = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const u8 byte = value<u8>();
            result |= u64{byte & 0x7Fu} << shift;
            if (byte < 0x80) {
                return result;
            }
        }
        incomplete = true;
        return 0;
    }
    std::string text() {
        const std::span<const u8> raw = data(number());
        return {raw.begin(), raw.end()};
    }
    std::span<const u8> data(u64 count) {
        if (count > rest.size()) {
            incomplete = true;
            rest = {};
        }
        const std::span<const u8> taken = rest.first(std::min<u64>(count, rest.size()));
        rest = rest.subspan(taken.size());
        return taken;
    }

  private:
    std::span<const u8> rest;
    bool incomplete = false;
};

}  // namespace tarn::recording
