// The symbols and line tables of a program, by guest address and by name.
#include "symbols/symbol_table.h"

#include "memory/main_memory.h"

#include <algorithm>
#include <cstdio>

namespace tarn::symbols {
namespace {

/// The range that contains an address. The ranges are sorted and do not overlap.
template <typename Range>
const Range* rangeAt(const std::vector<Range>& ranges, u32 address) {
    const auto behind = std::ranges::upper_bound(ranges, address, {}, &Range::first);
    return behind != ranges.begin() && address < behind[-1].end ? &behind[-1] : nullptr;
}

}  // namespace

u32 foldAddress(u64 address) {
    const auto low = static_cast<u32>(address);
    const u32 offset = mainMemoryOffset<Access::Store>(low, 1);
    return offset != notMainMemory ? offset : low;
}

const Symbol* SymbolTable::symbolAt(u64 address) const { return rangeAt(symbols, foldAddress(address)); }

const LineRange* SymbolTable::lineAt(u64 address) const { return rangeAt(lines, foldAddress(address)); }

std::optional<u32> SymbolTable::addressOf(std::string_view name) const {
    const auto found = std::ranges::lower_bound(byName, name, {}, &std::pair<std::string, u32>::first);
    return found != byName.end() && found->first == name ? std::optional(found->second) : std::nullopt;
}

std::string SymbolTable::describe(u64 address) const {
    std::string text;
    if (const Symbol* symbol = symbolAt(address)) {
        text = symbol->name;
        if (const u32 distance = foldAddress(address) - symbol->first; distance != 0) {
            char hexadecimal[16];
            std::snprintf(hexadecimal, sizeof hexadecimal, "+0x%x", distance);
            text += hexadecimal;
        }
    }
    if (const LineRange* range = lineAt(address)) {
        const std::string& path = files[range->file];
        text += (text.empty() ? "(" : " (") + path.substr(path.rfind('/') + 1) + ':' +
                std::to_string(range->line) + ')';
    }
    return text;
}

}  // namespace tarn::symbols
