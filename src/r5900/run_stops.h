// Runs that stop before certain steps, for breakpoints and watchpoints. The decoded instructions of these
// steps get special routines, so that all others run at full speed.
#pragma once

#include "r5900/decode_cache.h"

#include <array>

namespace tarn::r5900 {

/// A coarse set of memory addresses. All views of a byte share a bit.
class WatchedLines {
  public:
    /// Adds `bytes` bytes, and the addresses before them at which an access that reaches them may start.
    void add(u32 address, u32 bytes);
    void clear() { bits.fill(0); }
    bool mayHold(u32 address) const {
        const u32 line = lineOf(address);
        return (bits[line / 64] >> (line % 64) & 1) != 0;
    }

  private:
    static constexpr u32 lineBytes = 64;
    static constexpr u32 lines = mainMemorySize / lineBytes;
    static constexpr u32 lineOf(u32 address) { return address % mainMemorySize / lineBytes; }

    std::array<u64, lines / 64> bits{};
};

/// The steps before which runs stop.
struct RunStops {
    /// Whether to stop before every step at an address in main memory.
    bool (*breaksAt)(u32 pc);

    /// The memory whose accesses stop runs, or null.
    const WatchedLines* watched;

    /// Whether to stop before the next step, given the current registers.
    bool (*stopsHere)();
};

/// Makes runs stop before these steps; null removes the stops. Not to be called during a run.
void stopRuns(const RunStops* stops);

/// The current stops, or null.
extern const RunStops* runStops;

/// Sets the routine of the instruction at `pc` so that runs stop where they must.
void placeStop(DecodedInstruction& instruction, u64 pc);

}  // namespace tarn::r5900
