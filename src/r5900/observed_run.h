// Runs with a branch observer. Only the routines of decoded branches differ, so that runs without one pay
// nothing.
#pragma once

#include "r5900/branch_observer.h"
#include "r5900/decode_cache.h"

namespace tarn::r5900 {

/// The attached observer, or null.
extern const BranchObserver* branchObserver;

/// Makes a decoded branch or jump call the observer first.
void observe(DecodedInstruction& instruction);

}  // namespace tarn::r5900
