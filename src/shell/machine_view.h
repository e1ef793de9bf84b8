// The panes Opcodes and CpuRegisters as a view of the machine: of a trace a few dozen times a second, of a
// machine that stands where it is.
#pragma once

#include "base/diagnostics.h"
#include "machine/machine.h"

#include <array>
#include <chrono>

namespace tarn {

/// Keeps the last lines of the trace, and nothing else of it.
class MachineView final : public TraceObserver {
  public:
    void branchTaken() override;
    void executed(u64 pc, u32 word) override;

    /// Brings the panes up to date, if that is due. To be called often.
    void update();

  private:
    using Clock = std::chrono::steady_clock;

    void show(bool stands);

    static constexpr std::size_t ringSize = 128;  // more than a pane has lines
    std::array<decltype(Machine::traceLine), ringSize> ring{};
    u64 lines = 0;  ///< traced so far
    u64 shownLines = 0;
    u64 tracedStep = 0;  ///< the driver step that was traced last, and
    u64 firstLine = 0;   ///< the line with which its unbroken trace began
    bool everTraced = false;
    Clock::time_point due{};
    MipsCpuRecord shownCpu{};
    u64 shownStep = 0;
    bool stood = false;  ///< at the last look
};

}  // namespace tarn
