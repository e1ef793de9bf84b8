// The machine's diagnostics: five text channels, and a notification of a changed picture. The program that
// runs the machine decides where they go.
#pragma once

#include "base/types.h"

#include <array>

namespace tarn {

/// The channels. StandardOutput and Console, which carries the guest's output, take any text; the others take
/// one line per call, without its newline.
enum class Channel : u8 { StandardOutput, EmuOutput, Opcodes, CpuRegisters, Console };

inline constexpr std::size_t channelCount = 5;

/// Receives the instruction trace in place of the Opcodes and CpuRegisters channels. The trace line is in
/// debugTempText.
class TraceObserver {
  public:
    /// Called before the first instruction of a step.
    virtual void stepBegins() {}
    /// A branch or jump is taken; its delay slot comes next.
    virtual void branchTaken() = 0;
    /// The instruction `word` at `pc` has been executed, with its delay slot if it has one.
    virtual void executed(u64 pc, u32 word) = 0;

  protected:
    ~TraceObserver() = default;
};

/// Where the channels go. Null drops the text.
struct DiagnosticSinks {
    std::array<void (*)(const char* text), channelCount> text{};
    void (*pictureChanged)() = nullptr;
    TraceObserver* trace = nullptr;  ///< null: the trace goes to its two channels
};

/// Only standard output is connected at process start.
extern DiagnosticSinks diagnosticSinks;

/// Set by a sink that has something new to show. Loops over driver steps clear it first and stop when it is
/// set, so that the panes show what they would show after single steps.
inline bool paneChanged = false;

/// Prints a printf-style text to standard output.
[[gnu::format(printf, 1, 2)]] void printDiagnostic(const char* format, ...);

/// Each sends one zero-terminated line.
void PrintToEmuOutput(const char* text);
void PrintToOpcodeOutput(const char* text);
void PrintToRegistersOutput(const char* text);

/// Sends one character of the guest's output.
void writeToConsole(char character);

/// PrintToEmuOutput of a printf-style text (cut at 1023 characters).
[[gnu::format(printf, 1, 2)]] void PrintfToEmuOutput(const char* format, ...);

/// Notifies the front end of a new picture on MainScreen.
void MarkVideoOutputDirty();

/// Mutes all channels while it exists.
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
