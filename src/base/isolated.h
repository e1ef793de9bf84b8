// Running code on untrusted input in a separate process.
#pragma once

#include "base/types.h"

#include <functional>
#include <optional>
#include <vector>

namespace tarn {

/// Calls `work` in a child process and returns its bytes, or nothing if that crashes, or takes more than ten
/// seconds or a gigabyte. For libraries that are not safe on hostile files.
std::optional<std::vector<u8>> runIsolated(const std::function<std::vector<u8>()>& work);

}  // namespace tarn
