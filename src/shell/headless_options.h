// The command line of tarn-headless.
#pragma once

#include "base/configuration_source.h"
#include "base/types.h"
#include "recording/recorder.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn {

struct HeadlessOptions {
    /// Where to stop a run: before the instruction there is executed for the `count`th time.
    struct Place {
        std::string name;  ///< a symbol or an address
        u64 count = 1;
    };

    /// Bytes of the guest's memory.
    struct Bytes {
        std::string address;  ///< or a symbol
        u32 count = 4;
    };

    std::optional<std::string> program;  ///< replaces ./tarn.ini altogether
    std::vector<ConfigurationSource::Assignment> assignments;
    std::optional<u64> steps;   ///< driver steps after which the run ends
    std::optional<u64> frames;  ///< vertical blanks after which the run ends
    std::optional<Place> until;
    std::optional<std::string> picture;
    std::optional<u64> pictureEvery;  ///< vertical blanks between numbered pictures
    std::optional<std::string> snapshot;
    std::optional<std::string> vramDump;
    std::optional<std::string> trace;
    std::optional<std::string> traceChanges;  ///< only one of the two
    std::optional<u64> traceFrom;             ///< the first step that is traced
    std::optional<u64> traceSteps;            ///< how many are traced
    std::optional<std::string> profile;
    std::optional<std::string> coverage;
    std::optional<std::string> record;  ///< file for what the GS receives
    std::optional<recording::FrameRange> recordFrames;
    std::optional<u16> gdbPort;            ///< loopback port for a debugger; 0: any free one
    std::optional<std::string> saveState;  ///< file for the machine at the end
    std::optional<std::string> loadState;  ///< file to start from
    std::optional<u32> historySize;        ///< memory for checkpoints, MB
    std::optional<u32> history;            ///< steps to print when the CPU pauses
    std::optional<Bytes> lastWrite;        ///< whose last store to report
    bool registers = false;
    bool exitStatus = false;  ///< return the program's own status
    bool completeCpu = false;
    bool quiet = false;
    bool help = false;
    bool version = false;

    /// The file of either kind of trace.
    const std::optional<std::string>& tracePath() const { return traceChanges ? traceChanges : trace; }
};

/// The text of --help.
void printHeadlessUsage();

/// Parses a command line. Returns nothing after a message on standard error if it is unusable.
std::optional<HeadlessOptions> parseHeadlessOptions(int count, char** arguments);

}  // namespace tarn
