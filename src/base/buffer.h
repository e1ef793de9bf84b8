// An owning buffer of bytes, and its allocator, which tests can replace by one that fails.
#pragma once

#include "base/types.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace tarn {

/// Takes a size in bytes and returns zeroed memory, or null. Replaceable by tests. Zeroed, because two runs
/// of a guest that reads memory it never wrote must not differ.
inline void* (*allocateBuffer)(std::size_t bytes) = [](std::size_t bytes) { return std::calloc(bytes, 1); };

/// Releases memory from allocateBuffer, and must be replaced together with it.
inline void (*freeBuffer)(void* memory, std::size_t bytes) = [](void* memory, std::size_t) {
    std::free(memory);
};

/// A buffer, which is empty and converts to a null pointer until it is allocated. Copies are deep.
class Buffer {
  public:
    constexpr Buffer() = default;
    ~Buffer() { release(); }
    Buffer(const Buffer& other) { *this = other; }
    Buffer(Buffer&& other) noexcept
        : data(std::exchange(other.data, nullptr)), bytes(std::exchange(other.bytes, 0)) {}
    Buffer& operator=(Buffer&& other) noexcept {
        std::swap(data, other.data);
        std::swap(bytes, other.bytes);
        return *this;
    }
    /// Becomes empty if there is no memory for the copy.
    Buffer& operator=(const Buffer& other) {
        if (this != &other && (other.data == nullptr ? (release(), false) : allocate(other.bytes))) {
            std::memcpy(data, other.data, bytes);
        }
        return *this;
    }

    /// Replaces the contents by `size` zeroed bytes. Returns false, and is empty, if there is no memory.
    bool allocate(std::size_t size) {
        release();
        data = static_cast<u8*>(allocateBuffer(size));
        bytes = data != nullptr ? size : 0;
        return data != nullptr;
    }
    void release() {
        if (data != nullptr) {
            freeBuffer(std::exchange(data, nullptr), std::exchange(bytes, 0));
        }
    }

    /// Takes ownership of memory that freeBuffer can release, and gives it up again.
    static Buffer adopting(u8* memory, std::size_t size) {
        Buffer buffer;
        buffer.data = memory;
        buffer.bytes = size;
        return buffer;
    }
    u8* giveUp() {
        bytes = 0;
        return std::exchange(data, nullptr);
    }

    std::size_t size() const { return bytes; }
    constexpr operator u8*() const { return data; }
    u8* begin() const { return data; }
    u8* end() const { return data + bytes; }

  private:
    u8* data = nullptr;
    std::size_t bytes = 0;
};

}  // namespace tarn
