// Work on input that is not trusted, in a process of its own.
#pragma once

#include "base/types.h"

#include <functional>
#include <optional>
#include <vector>

namespace tarn {

/// The bytes that `work` gives in a child process that may take ten seconds and a gigabyte. Nothing when it
/// takes more or crashes. For libraries that are not made for hostile files.
std::optional<std::vector<u8>> runIsolated(const std::function<std::vector<u8>()>& work);

}  // namespace tarn
