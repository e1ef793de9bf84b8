// Saved states, checkpoints and reports on the last steps of a run without a window.
#pragma once

#include "history/timeline.h"
#include "shell/headless_options.h"
#include "symbols/symbol_table.h"

#include <span>
#include <vector>

namespace tarn {

class HeadlessHistory {
  public:
    /// MainScreen must exist. `table` is called only if a symbol is needed.
    HeadlessHistory(const HeadlessOptions& given, const symbols::SymbolTable& (*readTable)());

    /// Reads the file of the state to load, if any. Returns false after a message on failure.
    static bool readState(const HeadlessOptions& options, std::vector<u8>& bytes);

    /// Restores the state to load, if any, and starts to keep the history that the options ask for. Returns
    /// false after a message on failure.
    bool begin(std::span<const u8> savedState);

    /// Call it from time to time during the run.
    void look() { timeline.look(); }

    /// Prints the requested reports on past steps on standard error. Does not move the machine.
    void report(bool paused);

    history::Timeline& past() { return timeline; }

  private:
    const HeadlessOptions& options;
    const symbols::SymbolTable& (*table)();
    history::Timeline timeline;
    u32 watchedAddress = 0;
};

}  // namespace tarn
