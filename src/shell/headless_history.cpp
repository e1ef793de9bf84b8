// Saved states, checkpoints and reports on the last steps of a run without a window.
#include "shell/headless_history.h"

#include "history/report.h"
#include "history/state_file.h"
#include "machine/settings.h"
#include "shell/session.h"

#include <cstdio>

namespace tarn {
namespace {

constexpr u32 defaultHistorySize = 512;  // MB

bool complain(const std::string& path, const std::optional<std::string>& complaint) {
    if (complaint) {
        std::fprintf(stderr, "tarn-headless: cannot go on from %s: %s\n", path.c_str(), complaint->c_str());
    }
    return !complaint;
}

}  // namespace

HeadlessHistory::HeadlessHistory(const HeadlessOptions& given, const symbols::SymbolTable& (*readTable)())
    : options(given), table(readTable),
      timeline(std::size_t{given.historySize.value_or(defaultHistorySize)} << 20, picturePixels()) {}

bool HeadlessHistory::readState(const HeadlessOptions& options, std::vector<u8>& bytes) {
    return !options.loadState ||
           complain(*options.loadState, history::readStateFile(options.loadState->c_str(), bytes));
}

bool HeadlessHistory::begin(std::span<const u8> savedState) {
    if (options.loadState &&
        !complain(*options.loadState,
                  history::unpackState(savedState, history::programIdentity(Settings.ElfToExecute),
                                       picturePixels()))) {
        return false;
    }
    if (options.lastWrite) {
        const std::string& name = options.lastWrite->address;
        const std::optional<u32> address = history::addressNamed(name, table());
        if (!address) {
            std::fprintf(stderr, "tarn-headless: '%s' is neither an address nor a symbol of %s\n",
                         name.c_str(), Settings.ElfToExecute);
            return false;
        }
        watchedAddress = *address;
    }
    if (options.gdbPort || options.history || options.lastWrite) {
        timeline.begin();
    }
    return true;
}

void HeadlessHistory::report(bool paused) {
    if (!timeline.begun()) {
        return;
    }
    if (options.history && paused) {
        std::fprintf(stderr, "%s", history::describeSteps(timeline, *options.history, table()).c_str());
    }
    if (options.lastWrite) {
        const std::string text =
            history::describeLastWrite(timeline, watchedAddress, options.lastWrite->count, table());
        std::fprintf(stderr, "%s", text.c_str());
    }
}

}  // namespace tarn
