// The row type of the instruction list. The rows are in integer_list.h, fpu_list.h and multimedia_list.h; the
// dispatch tables, the mnemonic tables and all queries about an instruction word are generated from them,
// once for the described processor and once for the complete one.
#pragma once

#include "r5900/fields.h"
#include "r5900/operation_makers.h"
#include "r5900/trace.h"

namespace tarn::r5900 {

/// The dispatch tables, named after the entry that leads to them.
enum class Table : u8 {
    Normal,
    Special,
    Regimm,
    Cop0,
    C0,
    Special2,
    Cop1,
    Bc1,
    Cop1S,
    Cop1D,
    Cop1W,
    Mmi,
    Mmi0,
    Mmi1,
    Mmi2,
    Mmi3,
    Pmfhl,  // of the complete processor only
};
inline constexpr std::size_t tableCount = 17;

/// The index of a word in a table.
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
    case Table::Mmi0:
    case Table::Mmi1:
    case Table::Mmi2:
    case Table::Mmi3:
    case Table::Pmfhl:
        return bits6To10(word);
    default:
        return functionCode(word);
    }
}

enum class Processors : u8 { Both, Described, Complete };

/// One entry of a table, or a range of entries: name, trace line and operation. Where the processors differ,
/// a row names both operations, or the next row is for the other processor.
struct Row {
    Table table;
    u8 first, last;
    const char* mnemonic;
    TraceLine line;                        ///< none: the previous line is shown again
    const Operation* described = nullptr;  ///< null where another table decides
    const Operation* complete = nullptr;
    Table next{};
    Processors processors = Processors::Both;

    constexpr Row(Table in, u8 index, const char* name, const char* format, TraceOperands operands,
                  Operations does)
        : table(in), first(index), last(index), mnemonic(name), line(format, operands),
          described(does.described), complete(does.complete) {}
    constexpr Row(Table in, u8 index, const char* name, const char* format, TraceOperands operands,
                  Operations ofDescribed, Operations ofComplete)
        : Row(in, index, name, format, operands, {*ofDescribed.described, *ofComplete.complete}) {}
    constexpr Row(Table in, u8 index, const char* name, Operations does)
        : table(in), first(index), last(index), mnemonic(name), described(does.described),
          complete(does.complete) {}
    constexpr Row(Table in, u8 index, const char* name, Table leadsTo)
        : Row(in, index, index, name, leadsTo) {}
    constexpr Row(Table in, u8 firstIndex, u8 lastIndex, const char* name, Table leadsTo)
        : table(in), first(firstIndex), last(lastIndex), mnemonic(name), next(leadsTo) {}
};

constexpr Row onlyFor(Processors processors, Row row) {
    row.processors = processors;
    return row;
}
constexpr Row onlyDescribed(Row row) { return onlyFor(Processors::Described, row); }
constexpr Row onlyComplete(Row row) { return onlyFor(Processors::Complete, row); }

}  // namespace tarn::r5900
