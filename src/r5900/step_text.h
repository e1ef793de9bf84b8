// Describing single steps as text: trace lines and changes.
#pragma once

#include "base/diagnostics.h"
#include "machine/machine.h"

#include <string>

namespace tarn::r5900 {

/// A copy of the registers, to find those that change.
class RegisterChanges {
  public:
    /// Appends " name=value" for each register that has changed since the last call, or since construction.
    void appendTo(std::string& text);

  private:
    MipsCpuRecord before = MipsCpu;
};

/// Describes each traced step:
///
///     00100010: bne t0,r0,100000 | 00100014: sw t1,   4(a0) t1=5 [00108004]=5
///
/// The instructions, with delay slots after their branches; the changed registers, in hexadecimal, those of
/// the FPU in decimal; the address and value of a store; "(paused)". An instruction without a trace line
/// appears by its name.
class StepText : public TraceObserver {
  public:
    void stepBegins() override;
    void branchTaken() override;
    void executed(u64 pc, u32 word) override;

    /// The text of what has been traced since the last call, or an empty text. To be called after the step,
    /// so that it includes changes by the DMA controller. Valid until more is traced.
    std::string_view finish();

  private:
    void appendLine(std::string_view line);

    std::string text;
    std::string store;
    RegisterChanges changes;
    bool isPending = false;        ///< the text is not finished
    bool innermostIsDone = false;  ///< the instruction after all branches of the step
    u64 lastBranch = 0;            ///< address of the last of these
};

/// The line of the instruction at PC, as the trace would have it, or its name if it writes no line.
std::string nextStepText();

}  // namespace tarn::r5900
