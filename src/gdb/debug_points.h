// The breakpoints and watchpoints that a debugger has set.
#pragma once

#include "base/types.h"
#include "history/memory_access.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn::gdb {

using history::MemoryAccess;

enum class WatchKind : u8 { Write, Read, Access };

struct Watchpoint {
    WatchKind kind = WatchKind::Write;
    u32 address = 0;
    u32 length = 0;  ///< in bytes, not 0

    friend bool operator==(const Watchpoint&, const Watchpoint&) = default;
};

/// A watchpoint and the watched byte that an access touches first.
struct WatchHit {
    WatchKind kind = WatchKind::Write;
    u32 address = 0;
};

/// The stop reply that names the watchpoint and the watched address.
std::string watchReply(const WatchHit& hit);

/// The points at which the machine is to stop. Bounded: a point too many is refused.
///
/// A breakpoint stops the machine before the driver step that begins at its address. The delay slot of a
/// taken branch belongs to the branch's step, so a breakpoint on it is passed over unless the slot is reached
/// by itself.
class DebugPoints {
  public:
    /// Adds a point; adding it again changes nothing. False when there are too many already.
    bool addBreakpoint(u32 address);
    bool addWatchpoint(const Watchpoint& watchpoint);

    /// Removes a point; harmless when it is not there.
    void removeBreakpoint(u32 address);
    void removeWatchpoint(const Watchpoint& watchpoint);

    void clear();

    bool breaksAt(u64 pc) const;
    bool empty() const { return breakpoints.empty() && watchpoints.empty(); }
    bool watching() const { return !watchpoints.empty(); }

    /// The watchpoint that the access touches, through whichever mirror of the memory it goes.
    std::optional<WatchHit> watchHit(const MemoryAccess& access) const;

  private:
    std::vector<u32> breakpoints;
    std::vector<Watchpoint> watchpoints;
};

}  // namespace tarn::gdb
