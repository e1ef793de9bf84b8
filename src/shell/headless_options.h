// The command line of tarn-headless.
#pragma once

#include "base/configuration.h"
#include "base/types.h"
#include "recording/recorder.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn {

struct HeadlessOptions {
    /// Where a run is to stop: before the instruction there runs for the `count`th time.
    struct Place {
        std::string name;  ///< a symbol or an address
        u64 count = 1;
    };

    /// Bytes of the guest's memory.
    struct Bytes {
        std::string address;  ///< or a symbol
        u32 count = 4;
    };

    std::optional<std::string> program;  ///< in place of the one that ./tarn.ini names, and of all it says
    std::vector<ConfigurationSource::Assignment> assignments;
    std::optional<u64> steps;   ///< driver steps after which the run ends
    std::optional<u64> frames;  ///< vertical blanks after which the run ends
    std::optional<Place> until;
    std::optional<std::string> picture;
    std::optional<u64> pictureEvery;  ///< vertical blanks from one numbered picture to the next
    std::optional<std::string> snapshot;
    std::optional<std::string> vramDump;
    std::optional<std::string> trace;
    std::optional<std::string> traceChanges;  ///< only one of the two
    std::optional<u64> traceFrom;             ///< the first step that is traced
    std::optional<u64> traceSteps;            ///< how many are
    std::optional<std::string> profile;
    std::optional<std::string> coverage;
    std::optional<std::string> record;  ///< file for what the GS gets
    std::optional<recording::FrameRange> recordFrames;
    std::optional<u16> gdbPort;  ///< loopback port to wait for a debugger on; 0 stands for any free one
    std::optional<std::string> saveState;  ///< file for the machine at the end
    std::optional<std::string> loadState;  ///< file to start from
    std::optional<u32> historySize;        ///< memory for checkpoints, MB
    std::optional<u32> history;            ///< steps to print when the CPU pauses
    std::optional<Bytes> lastWrite;        ///< of which to report the last store
    bool registers = false;
    bool exitStatus = false;  ///< the status of the run is the program's own
    bool completeCpu = false;
    bool quiet = false;
    bool help = false;
    bool version = false;

    /// The file of the trace, of whichever kind.
    const std::optional<std::string>& tracePath() const { return traceChanges ? traceChanges : trace; }
};

/// What --help prints.
void printHeadlessUsage();

/// The options of a command line, or nothing, with the reason on standard error, when it is unusable.
std::optional<HeadlessOptions> parseHeadlessOptions(int count, char** arguments);

}  // namespace tarn
