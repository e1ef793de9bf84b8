// Runs that tell an observer which way the program goes. They differ in what decoded branches do, so that
// other runs have nothing to ask.
#pragma once

#include "r5900/branch_observer.h"
#include "r5900/decode_cache.h"

namespace tarn::r5900 {

/// Who observes, or null.
extern const BranchObserver* branchObserver;

/// Puts the observer in front of what a decoded branch or jump does.
void observe(DecodedInstruction& instruction);

}  // namespace tarn::r5900
