// The form of the list of instructions. The rows are in integer_list.h and fpu_list.h; the dispatch tables,
// the mnemonic tables and everything that is known of an instruction word are made from them.
#pragma once

#include "r5900/fields.h"
#include "r5900/operation.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// The dispatch tables, each named by what leads to it.
enum class Table : u8 { Normal, Special, Regimm, Cop0, C0, Special2, Cop1, Bc1, Cop1S, Cop1D, Cop1W };
inline constexpr std::size_t tableCount = 11;

/// The field of a word that is the index in the table.
constexpr u32 indexIn(Table table, u32 word) {
    switch (table) {
    case Table::Normal:
        return majorOpcode(word);
    case Table::Regimm:
        return regimmCode(word);
    case Table::Cop0:
    case Table::Cop1:
        return coprocessorCode(word);
    case Table::Bc1:
        return conditionBranchCode(word);
    default:
        return functionCode(word);
    }
}

/// A place of a table, or several in a row: a name, and what is there.
struct Row {
    Table table;
    u8 first, last;
    const char* mnemonic;
    TraceLine line;                        ///< none: the line before is shown again
    const Operation* operation = nullptr;  ///< null where another table decides
    Table next{};

    constexpr Row(Table in, u8 index, const char* name, const char* format, TraceOperands operands,
                  const Operation& does)
        : table(in), first(index), last(index), mnemonic(name), line(format, operands), operation(&does) {}
    constexpr Row(Table in, u8 index, const char* name, const Operation& does)
        : table(in), first(index), last(index), mnemonic(name), operation(&does) {}
    constexpr Row(Table in, u8 index, const char* name, Table leadsTo)
        : Row(in, index, index, name, leadsTo) {}
    constexpr Row(Table in, u8 firstIndex, u8 lastIndex, const char* name, Table leadsTo)
        : table(in), first(firstIndex), last(lastIndex), mnemonic(name), next(leadsTo) {}
};

}  // namespace tarn::r5900
