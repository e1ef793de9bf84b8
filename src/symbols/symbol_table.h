// The symbols and line tables of a program, by guest address and by name.
#pragma once

#include "base/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::symbols {

/// The offset in main memory of a guest address, in any of its views. Other addresses are returned unchanged.
u32 foldAddress(u64 address);

/// A function, a label, or an object.
struct Symbol {
    u32 first = 0;
    u32 end = 0;
    bool isCode = false;
    std::string name;
};

/// Code generated from one source line.
struct LineRange {
    u32 first = 0;
    u32 end = 0;
    u32 file = 0;  ///< index into SymbolTable::files
    u32 line = 0;  ///< 1 and up
};

struct SymbolTable {
    std::vector<Symbol> symbols;                      ///< sorted by address, without overlaps
    std::vector<LineRange> lines;                     ///< the same
    std::vector<std::string> files;                   ///< as given to the compiler
    std::vector<std::pair<std::string, u32>> byName;  ///< all names, sorted, with their addresses

    /// Null if there is none.
    const Symbol* symbolAt(u64 address) const;
    const LineRange* lineAt(u64 address) const;

    /// The address of a function, label or object.
    std::optional<u32> addressOf(std::string_view name) const;

    /// A description like "function+0x1c (file.c:42)", as far as known; empty for an unknown address.
    std::string describe(u64 address) const;
};

}  // namespace tarn::symbols
