// What a run without a window has to do with its past: saved states, checkpoints, reports on the last steps.
#pragma once

#include "history/timeline.h"
#include "shell/headless_options.h"
#include "symbols/symbol_table.h"

#include <span>
#include <vector>

namespace tarn {

class HeadlessHistory {
  public:
    /// For when MainScreen is there. `table` is asked for only when there is something to name.
    HeadlessHistory(const HeadlessOptions& given, const symbols::SymbolTable& (*readTable)());

    /// Reads the file of a saved state when one is named; false, with a message, when it cannot be read.
    static bool readState(const HeadlessOptions& options, std::vector<u8>& bytes);

    /// Goes on from the saved state when one is named, and begins to keep what the options ask for. False,
    /// with a message, when that cannot be done.
    bool begin(std::span<const u8> savedState);

    /// To be called now and then during the run.
    void look() { timeline.look(); }

    /// Says on standard error what is asked for of the steps before the end. The machine is left where it is.
    void report(bool paused);

    history::Timeline& past() { return timeline; }

  private:
    const HeadlessOptions& options;
    const symbols::SymbolTable& (*table)();
    history::Timeline timeline;
    u32 watchedAddress = 0;
};

}  // namespace tarn
