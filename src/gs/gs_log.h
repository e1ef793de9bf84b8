// The renderer's log, for debugging: off, and without a stream, unless a debugger or test sets both.
#pragma once

#include "base/types.h"

#include <cstdio>

namespace tarn {

inline s32 Log = 0;                 ///< not 0: __Log writes
inline std::FILE* gsLog = nullptr;  ///< where to; never opened here

/// Writes a printf-style text to gsLog.
[[gnu::format(printf, 1, 2)]] void __Log(const char* format, ...);  // NOLINT(bugprone-reserved-identifier)

}  // namespace tarn
