// Reports on past steps.
#pragma once

#include "history/timeline.h"
#include "symbols/symbol_table.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn::history {

/// The last `count` steps before the machine's position, one per line: step, place, instructions, and
/// changes. The machine is unchanged afterwards.
std::string describeSteps(Timeline& timeline, u64 count, const symbols::SymbolTable& symbols);

/// Parses an address given as a symbol, a symbol plus an offset ("table+0x20"), or a hexadecimal number.
std::optional<u32> addressNamed(std::string_view text, const symbols::SymbolTable& symbols);

/// The step, the place and the values of the last store to `bytes` bytes from `address` on. The machine is
/// unchanged afterwards.
std::string describeLastWrite(Timeline& timeline, u32 address, u32 bytes,
                              const symbols::SymbolTable& symbols);

/// The machine's position: step, number of vertical blanks, and place.
std::string describePosition(const symbols::SymbolTable& symbols);

}  // namespace tarn::history
