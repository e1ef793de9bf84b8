// Owns the one way in which the machine's big buffers are obtained, so that tests can make it fail.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace tarn {

/// Replaceable by tests: takes a size in bytes, gives zeroed memory to be freed with std::free, or null.
/// Zeroed, because two runs of a guest that reads memory it never wrote must not differ.
inline void* (*allocateBuffer)(std::size_t bytes) = [](std::size_t bytes) { return std::calloc(bytes, 1); };

}  // namespace tarn
