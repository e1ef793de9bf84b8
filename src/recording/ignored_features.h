// What a program asks of the GS that the GS here does not do.
#pragma once

#include "recording/command.h"

#include <bitset>
#include <string>
#include <vector>

namespace tarn::recording {

/// Looks at commands one after another, and tells of each feature once.
class IgnoredFeatures {
  public:
    /// To be called when the command has been executed.
    void look(const Command& command);

    /// A sentence for each, with the first command that asks for it, in the order of these.
    const std::vector<std::string>& warnings() const { return sentences; }

  private:
    std::bitset<64> told;
    std::vector<std::string> sentences;
};

}  // namespace tarn::recording
