// What the machine says: five channels of text and the news of a changed picture. The program that runs the
// machine decides where they go.
#pragma once

#include "base/types.h"

#include <array>

namespace tarn {

/// Where a text belongs. StandardOutput and Console, on which the guest speaks, take text as it comes, the
/// others one line a call, without its newline.
enum class Channel : u8 { StandardOutput, EmuOutput, Opcodes, CpuRegisters, Console };

inline constexpr std::size_t channelCount = 5;

/// Takes the trace of the instructions, in place of the Opcodes and CpuRegisters channels. The trace line is
/// in debugTempText each time.
class TraceObserver {
  public:
    /// Before the instruction with which a step begins.
    virtual void stepBegins() {}
    /// A branch or jump goes to its target; its delay slot comes next.
    virtual void branchTaken() = 0;
    /// The instruction `word` at `pc` has been executed, with its delay slot if it has one.
    virtual void executed(u64 pc, u32 word) = 0;

  protected:
    ~TraceObserver() = default;
};

/// Where the channels lead. A null pointer drops what is said.
struct DiagnosticSinks {
    std::array<void (*)(const char* text), channelCount> text{};
    void (*pictureChanged)() = nullptr;
    TraceObserver* trace = nullptr;  ///< null: the trace goes to its two channels
};

/// Standard output is connected from the beginning, the rest is not.
extern DiagnosticSinks diagnosticSinks;

/// Set by a sink whose front end has something new to show. Who runs many driver steps at a time clears it
/// first and stops when it is set, so that the panes show what they would have shown after single steps.
inline bool paneChanged = false;

/// Prints a printf-style text to standard output.
[[gnu::format(printf, 1, 2)]] void printDiagnostic(const char* format, ...);

/// Each passes on one zero-terminated line.
void PrintToEmuOutput(const char* text);
void PrintToOpcodeOutput(const char* text);
void PrintToRegistersOutput(const char* text);

/// Passes on one character of what the guest says.
void writeToConsole(char character);

/// PrintToEmuOutput of a printf-style text (cut at 1023 characters).
[[gnu::format(printf, 1, 2)]] void PrintfToEmuOutput(const char* format, ...);

/// Says that there is a new picture on MainScreen.
void MarkVideoOutputDirty();

/// While one lives, nothing that the machine says is heard.
class MutedDiagnostics {
  public:
    MutedDiagnostics() { diagnosticSinks = {}; }
    ~MutedDiagnostics() { diagnosticSinks = former; }
    MutedDiagnostics(const MutedDiagnostics&) = delete;
    MutedDiagnostics& operator=(const MutedDiagnostics&) = delete;

  private:
    DiagnosticSinks former = diagnosticSinks;
};

}  // namespace tarn
