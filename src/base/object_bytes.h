// The bytes that objects consist of.
#pragma once

#include "base/types.h"

#include <span>
#include <type_traits>

namespace tarn {

template <typename T>
std::span<const u8> bytesOfObject(const T& object) {
    static_assert(std::is_trivially_copyable_v<T>);
    return {reinterpret_cast<const u8*>(&object), sizeof object};
}

/// The bytes of the elements of a string, a vector or an array.
template <typename Range>
std::span<const u8> bytesOfElements(const Range& range) {
    const std::span elements(range);
    static_assert(std::is_trivially_copyable_v<typename decltype(elements)::value_type>);
    return {reinterpret_cast<const u8*>(elements.data()), elements.size_bytes()};
}

}  // namespace tarn
