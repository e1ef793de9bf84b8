// The look ahead at the load or store that the next driver step makes.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"

#include <optional>

namespace tarn::gdb {

struct MemoryAccess {
    u32 address = 0;
    u32 length = 0;  ///< in bytes
    Access kind = Access::Load;
};

/// The load or store that the next driver step makes, from PC and the registers as they are.
///
/// A step executes at most one: a taken branch or a jump runs its delay slot inside the same step, so the
/// slot is looked at in its place. What system calls and the DMA controller do to memory is not foreseen.
std::optional<MemoryAccess> nextMemoryAccess();

}  // namespace tarn::gdb
