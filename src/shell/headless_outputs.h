// The outputs of a run without a window: pictures, memory, trace, counts.
#pragma once

#include "shell/headless_options.h"
#include "shell/output_files.h"
#include "shell/trace_files.h"
#include "symbols/symbol_table.h"

#include <optional>

namespace tarn {

class HeadlessOutputs {
  public:
    /// `table` is called only if something is counted.
    HeadlessOutputs(const HeadlessOptions& given, const symbols::SymbolTable& (*readTable)())
        : options(given), table(readTable) {}

    /// Opens the files, so that errors show before the run. Returns false after a message on failure. If an
    /// output goes to standard output, diagnostics go to standard error.
    bool open();

    /// Turns tracing on or off as requested from this step on. Returns the step at which that changes.
    u64 traceAt(u64 step);
    void endTrace();

    /// Starts counting instructions if requested. Returns false after a message on failure.
    bool beginCounting() const;

    /// Starts recording what reaches the GS if requested.
    void beginRecording();

    /// Writes the emulated display to a file with the number of vertical blanks in its name.
    void writeNumberedPicture();

    /// Writes all requested outputs, even if some fail. Returns false if one is lost.
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
