// What steps of the past changed, in words.
#pragma once

#include "history/timeline.h"
#include "symbols/symbol_table.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn::history {

/// The last `count` steps before the machine's position, a line each: step, place, what the instructions
/// were, and what changed. The machine is left where it is.
std::string describeSteps(Timeline& timeline, u64 count, const symbols::SymbolTable& symbols);

/// The address that a person means by a symbol, by a symbol and a distance ("table+0x20"), or by a
/// hexadecimal number.
std::optional<u32> addressNamed(std::string_view text, const symbols::SymbolTable& symbols);

/// The step, the place and the values of the last store to `bytes` bytes from `address` on. The machine is
/// left where it is.
std::string describeLastWrite(Timeline& timeline, u32 address, u32 bytes,
                              const symbols::SymbolTable& symbols);

/// The step, the vertical blanks and the place that the machine is at.
std::string describePosition(const symbols::SymbolTable& symbols);

}  // namespace tarn::history
