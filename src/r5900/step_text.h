// What single steps do, as text: the trace lines, and what changed.
#pragma once

#include "base/diagnostics.h"
#include "machine/machine.h"

#include <string>

namespace tarn::r5900 {

/// The registers as they were, to find those that change.
class RegisterChanges {
  public:
    /// Appends " name=value" for each register that is not as it was at the last call, or at construction.
    void appendTo(std::string& text);

  private:
    MipsCpuRecord before = MipsCpu;
};

/// Makes a text of each traced step:
///
///     00100010: bne t0,r0,100000 | 00100014: sw t1,   4(a0) t1=5 [00108004]=5
///
/// The instructions, those in delay slots behind their branches; the registers that changed, in hexadecimal,
/// or, those of the FPU, in decimal; the address and the value of a store; "(paused)". An instruction that
/// writes no trace line appears by its name.
class StepText : public TraceObserver {
  public:
    void stepBegins() override;
    void branchTaken() override;
    void executed(u64 pc, u32 word) override;

    /// The text of what has been traced since the last call, once the step is over, so that it has what the
    /// DMA controller did to the registers; empty if there is nothing. It lasts until more is traced.
    std::string_view finish();

  private:
    void appendLine(std::string_view line);

    std::string text;
    std::string store;
    RegisterChanges changes;
    bool isPending = false;        ///< the text is not finished
    bool innermostIsDone = false;  ///< the instruction behind all branches of the step
    u64 lastBranch = 0;            ///< address of the last of these
};

}  // namespace tarn::r5900
