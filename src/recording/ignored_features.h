// Features of the GS that a program uses and that are not emulated.
#pragma once

#include "recording/command.h"

#include <bitset>
#include <string>
#include <vector>

namespace tarn::recording {

/// Collects the features that commands use.
class IgnoredFeatures {
  public:
    /// Call it after the command has been executed.
    void look(const Command& command);

    /// A sentence for each feature with the first command that uses it, in the order of these commands.
    const std::vector<std::string>& warnings() const { return sentences; }

  private:
    std::bitset<64> told;
    std::vector<std::string> sentences;
};

}  // namespace tarn::recording
