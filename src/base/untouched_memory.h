// Memory that has never been written, as the host's page tables tell.
#pragma once

#include "base/types.h"

#include <span>
#include <vector>

namespace tarn {

/// Which pages of a buffer the host has not given memory to yet. They read as zeros, but reading them costs a
/// page fault each. The buffer must have been allocated as zeros, and not be backed by a file.
class UntouchedMemory {
  public:
    /// Looks at `buffer` once; what is written later is not noticed.
    explicit UntouchedMemory(std::span<const u8> buffer);

    /// Whether no byte of `part`, a part of the buffer, has ever been written. False where the host does not
    /// tell.
    bool holds(std::span<const u8> part) const;

  private:
    u64 firstPage = 0;
    std::vector<u64> pages;  ///< an entry of the page table each
};

}  // namespace tarn
