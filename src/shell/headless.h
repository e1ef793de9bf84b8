// A run of the machine without a window.
#pragma once

#include "shell/headless_options.h"

namespace tarn {

/// Starts the machine, runs it to its end, writes the requested outputs, and shuts it down. Returns the exit
/// status.
int runHeadless(const HeadlessOptions& options);

/// Flushes standard output. Returns `status`, or 1 after a message if output is lost.
int finishStandardOutput(int status);

}  // namespace tarn
