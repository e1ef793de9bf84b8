// The panes Opcodes and CpuRegisters as a view of the machine: the last lines of a running trace, refreshed
// about sixty times a second, or the position of a paused machine.
#pragma once

#include "base/diagnostics.h"
#include "machine/machine.h"

#include <array>
#include <chrono>

namespace tarn {

/// Keeps only the last lines of the trace.
class MachineView final : public TraceObserver {
  public:
    void branchTaken() override;
    void executed(u64 pc, u32 word) override;

    /// Updates the panes if an update is due. Call it often.
    void update();

  private:
    using Clock = std::chrono::steady_clock;

    void show(bool stands);

    static constexpr std::size_t ringSize = 128;  // more than a pane has lines
    std::array<decltype(Machine::traceLine), ringSize> ring{};
    u64 lines = 0;  ///< traced so far
    u64 shownLines = 0;
    u64 tracedStep = 0;  ///< the last traced driver step
    u64 firstLine = 0;   ///< the first line of the uninterrupted trace that leads to it
    bool everTraced = false;
    Clock::time_point due{};
    MipsCpuRecord shownCpu{};
    u64 shownStep = 0;
    bool stood = false;  ///< the machine was paused at the last update
};

}  // namespace tarn
