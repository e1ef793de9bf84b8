// The breakpoints and watchpoints of a debugger.
#include "gdb/debug_points.h"

#include "gdb/packet.h"

#include <algorithm>
#include <array>

namespace tarn::gdb {

using history::placeOf;

namespace {

constexpr std::size_t pointLimit = 256;  ///< of each sort; a step looks at every one of them

template <typename Point>
bool addOnce(std::vector<Point>& points, const Point& point) {
    if (std::find(points.begin(), points.end(), point) != points.end()) {
        return true;
    }
    if (points.size() >= pointLimit) {
        return false;
    }
    points.push_back(point);
    return true;
}

constexpr bool concerns(WatchKind kind, Access access) {
    return kind == WatchKind::Access || (kind == WatchKind::Write) == (access == Access::Store);
}

}  // namespace

bool DebugPoints::addBreakpoint(u32 address) { return addOnce(breakpoints, address); }
bool DebugPoints::addWatchpoint(const Watchpoint& watchpoint) { return addOnce(watchpoints, watchpoint); }
void DebugPoints::removeBreakpoint(u32 address) { std::erase(breakpoints, address); }
void DebugPoints::removeWatchpoint(const Watchpoint& watchpoint) { std::erase(watchpoints, watchpoint); }

void DebugPoints::clear() {
    breakpoints.clear();
    watchpoints.clear();
}

bool DebugPoints::breaksAt(u64 pc) const {
    return std::find(breakpoints.begin(), breakpoints.end(), static_cast<u32>(pc)) != breakpoints.end();
}

std::optional<WatchHit> DebugPoints::watchHit(const MemoryAccess& access) const {
    const u64 accessFirst = placeOf(access.address, access.kind);
    const u64 accessEnd = accessFirst + access.length;
    for (const Watchpoint& watchpoint : watchpoints) {
        if (!concerns(watchpoint.kind, access.kind)) {
            continue;
        }
        const u64 first = placeOf(watchpoint.address, access.kind);
        const u64 end = first + watchpoint.length;
        if (accessFirst < end && first < accessEnd) {
            // The debugger knows the watchpoint by the address it gave, not by the mirror that the guest
            // used.
            const u64 touched = std::max(first, accessFirst) - first;
            return WatchHit{watchpoint.kind, static_cast<u32>(watchpoint.address + touched)};
        }
    }
    return std::nullopt;
}

std::string watchReply(const WatchHit& hit) {
    const char* kind = hit.kind == WatchKind::Write  ? "watch"
                       : hit.kind == WatchKind::Read ? "rwatch"
                                                     : "awatch";
    const std::array<u8, 4> digits = {static_cast<u8>(hit.address >> 24), static_cast<u8>(hit.address >> 16),
                                      static_cast<u8>(hit.address >> 8), static_cast<u8>(hit.address)};
    return std::string("T05") + kind + ":" + toHex(digits) + ";";
}

}  // namespace tarn::gdb
