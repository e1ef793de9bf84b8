// The symbols and line tables of a program, by guest address and by name.
#pragma once

#include "base/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::symbols {

/// The offset in main memory that a guest address stands for in any of its views; other addresses as they
/// are.
u32 foldAddress(u64 address);

/// A function, a label, or an object.
struct Symbol {
    u32 first = 0;
    u32 end = 0;
    bool isCode = false;
    std::string name;
};

/// Code that was made from one line.
struct LineRange {
    u32 first = 0;
    u32 end = 0;
    u32 file = 0;  ///< index into SymbolTable::files
    u32 line = 0;  ///< 1 and up
};

struct SymbolTable {
    std::vector<Symbol> symbols;                      ///< by rising address, without overlaps
    std::vector<LineRange> lines;                     ///< the same
    std::vector<std::string> files;                   ///< as the compiler was given them
    std::vector<std::pair<std::string, u32>> byName;  ///< every name, in order, with its address

    /// Null where none is known.
    const Symbol* symbolAt(u64 address) const;
    const LineRange* lineAt(u64 address) const;

    /// Where a function, label or object begins.
    std::optional<u32> addressOf(std::string_view name) const;

    /// "function+0x1c (file.c:42)", as much of it as is known of an address, or nothing.
    std::string describe(u64 address) const;
};

}  // namespace tarn::symbols
