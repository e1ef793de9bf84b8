// Runs that end before certain steps, for breakpoints and watchpoints. Those steps' decoded instructions have
// routines of their own, so that all others have nothing to ask.
#pragma once

#include "r5900/decode_cache.h"

#include <array>

namespace tarn::r5900 {

/// Places in memory, coarsely: all views of a byte have the same bit.
class WatchedLines {
  public:
    /// Adds `bytes` bytes, and what an access may begin with before them.
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

/// Before which steps runs end.
struct RunStops {
    /// Whether steps at an address, in main memory, are among them.
    bool (*breaksAt)(u32 pc);

    /// The memory whose accesses are, or null.
    const WatchedLines* watched;

    /// Whether the next step is, with the registers as they are.
    bool (*stopsHere)();
};

/// Has runs end before these steps; by null, before none. For the time between runs.
void stopRuns(const RunStops* stops);

/// Who has runs end, or null.
extern const RunStops* runStops;

/// Gives the instruction at `pc` the routine that it needs to end runs.
void placeStop(DecodedInstruction& instruction, u64 pc);

}  // namespace tarn::r5900
