// Generation of the tables from the list of instructions, and queries about instruction words.
#include "r5900/tables.h"

#include "base/diagnostics.h"
#include "r5900/fpu_list.h"
#include "r5900/integer_list.h"
#include "r5900/interpreter.h"
#include "r5900/multimedia_list.h"

#include <span>
#include <utility>

namespace tarn::r5900 {

void NI() { MipsCpu.pause = 1; }

namespace {

/// Selects a table from a record of tables.
constexpr auto tableIn(auto& all, Table table) {
    auto& [normal, special, regimm, cop0, c0, special2, cop1, bc1, cop1S, cop1D, cop1W, mmi, mmi0, mmi1, mmi2,
           mmi3, pmfhl] = all;
    using Entry = std::remove_reference_t<decltype(normal[0])>;
    const std::span<Entry> tables[] = {normal, special, regimm, cop0, c0,   special2, cop1, bc1,  cop1S,
                                       cop1D,  cop1W,   mmi,    mmi0, mmi1, mmi2,     mmi3, pmfhl};
    return tables[static_cast<std::size_t>(table)];
}

/// The handler of an entry that dispatches through another table.
template <const Processor& processor, Table table>
void dispatch() {
    static constexpr auto handlers = tableIn(processor.handlers, table);
    handlers[indexIn(table, MipsCpu.opcode)]();
}

template <const Processor& processor, std::size_t... tables>
constexpr auto dispatchersOf(std::index_sequence<tables...>) {
    return std::array<Handler, tableCount>{dispatch<processor, static_cast<Table>(tables)>...};
}

template <const Processor& processor>
constexpr Processor processorOf(Processors kind, std::initializer_list<std::span<const Row>> lists) {
    constexpr auto dispatchers = dispatchersOf<processor>(std::make_index_sequence<tableCount>());
    const bool complete = kind == Processors::Complete;
    Processor made{};
    made.isComplete = complete;
    made.noOperation = skipWord;
    std::array<std::array<bool, 64>, tableCount> takenPlaces{};
    for (std::size_t table = 0; table < tableCount; ++table) {
        std::ranges::fill(tableIn(made.handlers, static_cast<Table>(table)),
                          complete ? stopAlways<Stop::NoInstruction> : NI);
        std::ranges::fill(tableIn(made.mnemonics, static_cast<Table>(table)), "NI");
    }
    for (const std::span<const Row> list : lists) {
        for (const Row& row : list) {
            if (row.processors != Processors::Both && row.processors != kind) {
                continue;
            }
            for (std::size_t index = row.first; index <= row.last; ++index) {
                const Row*& place = made.rows[static_cast<std::size_t>(row.table)][index];
                bool& taken = takenPlaces[static_cast<std::size_t>(row.table)][index];
                if (taken) {
                    throw "two rows for one place";
                }
                taken = true;
                place = &row;
                tableIn(made.mnemonics, row.table)[index] = row.mnemonic;
                const Operation* operation = complete ? row.complete : row.described;
                // No comparison of `operation` with null: with sanitizers g++ does not take it for a
                // constant.
                const bool dispatches = row.next != Table::Normal;
                tableIn(made.handlers, row.table)[index] =
                    dispatches ? dispatchers[static_cast<std::size_t>(row.next)] : operation->step;
            }
        }
    }
    return made;
}

constexpr Row noInstruction{Table::Normal, 0, "NI", stop};

/// The row of a word, found through one or more tables.
const Row& rowOf(const Processor& of, u32 word) {
    const Row* row = nullptr;
    Table table = Table::Normal;
    do {
        row = of.rows[static_cast<std::size_t>(table)][indexIn(table, word)];
        table = row != nullptr ? row->next : table;
    } while (row != nullptr && row->described == nullptr);
    return row != nullptr ? *row : noInstruction;
}

const Operation& operationOf(const Processor& of, u32 word) {
    const Row& row = rowOf(of, word);
    return of.isComplete ? *row.complete : *row.described;
}

/// The complete processor's tables without stepWithR0.
extern const Processor completeRows;
constexpr Processor completeRows =
    processorOf<completeRows>(Processors::Complete, {integerList, fpuList, multimediaList});

/// The same, with stepWithR0 around every handler.
template <std::size_t... indices>
constexpr Processor withR0(std::index_sequence<indices...>) {
    Processor made = completeRows;
    made.handlers.normal_opc = {stepWithR0<completeRows.handlers.normal_opc[indices]>...};
    made.noOperation = stepWithR0<skipWord>;
    return made;
}

}  // namespace

constexpr Processor describedProcessor =
    processorOf<describedProcessor>(Processors::Described, {integerList, fpuList});
constexpr Processor completeProcessor = withR0(std::make_index_sequence<64>());

void chooseProcessor(bool complete) {
    processor = complete ? &completeProcessor : &describedProcessor;
    dropDecodedInstructions();
}

const Operation& operationOf(u32 word) { return operationOf(*processor, word); }

bool keepsR0() { return processor->isComplete; }

bool isImplementedBy(bool complete, u32 word) {
    return operationOf(complete ? completeProcessor : describedProcessor, word).kind != Kind::Stop;
}

void stopWith(Stop reason) {
    MipsCpu.stop = reason;
    MipsCpu.stopCycle = MipsCpu.cycle;
    MipsCpu.pause = 1;
    const std::string place = describePlace(static_cast<u32>(MipsCpu.PC));
    PrintfToEmuOutput("Stop at %8.8llx%s%s, %s (%8.8lx): %s", MipsCpu.PC, place.empty() ? "" : " in ",
                      place.c_str(), mnemonicOf(MipsCpu.opcode), static_cast<unsigned long>(MipsCpu.opcode),
                      textOf(reason));
}

const TraceLine& traceLineOf(u32 word) {
    static constexpr TraceLine nop{"nop", noOperands}, none;
    const Row& row = rowOf(*processor, word);
    const Operation& operation = processor->isComplete ? *row.complete : *row.described;
    return word == 0 ? nop : operation.kind == Kind::Stop ? none : row.line;
}

void pauseOnOtherCondition() {
    printDiagnostic("%s : cc not implemented\n", mnemonicOf(MipsCpu.opcode));
    MipsCpu.pause = 1;
}

}  // namespace tarn::r5900

namespace tarn {

const char* mnemonicOf(u32 word) { return r5900::rowOf(*r5900::processor, word).mnemonic; }

bool isImplemented(u32 word) { return r5900::operationOf(word).kind != r5900::Kind::Stop; }

}  // namespace tarn
