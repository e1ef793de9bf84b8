// A run of the machine without a window.
#pragma once

#include "shell/headless_options.h"

namespace tarn {

/// Starts the machine, runs it to its end, writes what is asked for, shuts it down. Returns the exit status.
int runHeadless(const HeadlessOptions& options);

/// Completes standard output. Returns `status`, or 1 with a message when something of it is lost.
int finishStandardOutput(int status);

}  // namespace tarn
