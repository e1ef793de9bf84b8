// What a run without a window leaves behind: pictures, memory, trace, counts.
#pragma once

#include "shell/headless_options.h"
#include "shell/output_files.h"
#include "shell/trace_files.h"
#include "symbols/symbol_table.h"

#include <optional>
#include <span>

namespace tarn {

/// The bytes of the picture, to be read or replaced; they belong to the machine's state. None before there is
/// one.
std::span<u8> picturePixels();

class HeadlessOutputs {
  public:
    /// `table` is asked for only when there is something to count.
    HeadlessOutputs(const HeadlessOptions& given, const symbols::SymbolTable& (*readTable)())
        : options(given), table(readTable) {}

    /// Opens the files, so that one that cannot be written shows before the run; false, with a message, when
    /// there is one. Where an output goes to standard output, diagnostics go to standard error.
    bool open();

    /// Has instructions traced, or not, as is asked for from this step on; returns the step up to which that
    /// holds.
    u64 traceAt(u64 step);
    void endTrace();

    /// Has instructions counted when that is asked for; false, with a message, when it cannot be.
    bool beginCounting() const;

    /// Has what reaches the GS recorded when that is asked for.
    void beginRecording();

    /// Writes the emulated display with the number of vertical blanks in the file's name.
    void writeNumberedPicture();

    /// Writes every output that is asked for, each whatever becomes of the others; false when one is lost.
    bool write();

  private:
    void beginTrace();
    bool writeSnapshot();
    void writeCounts();
    bool finishRecording();

    const HeadlessOptions& options;
    const symbols::SymbolTable& (*table)();
    OutputFile picture, vram, state, profile, coverage, recorded;
    TraceFile trace;
    std::optional<FullTrace> fullTrace;
    std::optional<ChangesTrace> changesTrace;
    bool numberedPictureLost = false;
};

}  // namespace tarn
