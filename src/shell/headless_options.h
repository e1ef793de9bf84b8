// The command line of tarn-headless.
#pragma once

#include "base/types.h"

#include <optional>
#include <string>

namespace tarn {

/// ADDRESS[:BYTES] of --last-write.
struct WatchedBytes {
    u32 address = 0;
    u32 bytes = 4;
};

struct HeadlessOptions {
    std::optional<u64> steps;   ///< driver steps after which the run ends
    std::optional<u64> frames;  ///< vertical blanks after which the run ends
    std::optional<std::string> picture;
    std::optional<std::string> snapshot;
    std::optional<std::string> vramDump;
    std::optional<std::string> trace;
    std::optional<std::string> profile;
    std::optional<std::string> coverage;
    std::optional<u16> gdbPort;  ///< loopback port to wait for a debugger on; 0 stands for any free one
    std::optional<std::string> saveState;   ///< file for the machine at the end
    std::optional<std::string> loadState;   ///< file to start from
    std::optional<u32> history;             ///< steps to print when the CPU pauses
    std::optional<WatchedBytes> lastWrite;  ///< of which to report the last store
    bool registers = false;
    bool exitStatus = false;  ///< the status of the run is the program's own
    bool completeCpu = false;
    bool quiet = false;
    bool help = false;
    bool version = false;
};

extern const char* const headlessUsage;  ///< what --help prints

/// The options of a command line, or nothing, with the reason on standard error, when it is unusable.
std::optional<HeadlessOptions> parseHeadlessOptions(int count, char** arguments);

}  // namespace tarn
