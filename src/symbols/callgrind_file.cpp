// The profile in the format of callgrind's output files.
#include "symbols/callgrind_file.h"

#include <map>
#include <tuple>

namespace tarn::symbols {
namespace {

constexpr const char* unknown = "???";  // as callgrind's own tools write

/// Writes a name in full the first time, later as its number.
class NameList {
  public:
    void write(std::FILE* file, const char* key, const std::string& name) {
        const auto [known, isNew] = numbers.try_emplace(name, numbers.size() + 1);
        std::fprintf(file, "%s=(%zu)%s%s\n", key, known->second, isNew ? " " : "", isNew ? name.c_str() : "");
    }

  private:
    std::map<std::string, std::size_t> numbers;
};

/// A source line; line 0 of the first file if it is unknown.
struct Line {
    const std::string* file;
    u32 number;

    bool operator<(const Line& other) const {
        return std::tie(*file, number) < std::tie(*other.file, other.number);
    }
};

/// The counts of one function.
struct FunctionCosts {
    std::map<Line, Costs> lines;
    std::vector<const Call*> calls;
};

class Writer {
  public:
    Writer(std::FILE* destination, const SymbolTable& symbolTable) : file(destination), table(symbolTable) {}

    void write(const ExecutionCounts& counts, const std::string& program) {
        const std::vector<AddressCosts> costs = counts.byAddress();
        Costs total;
        for (const AddressCosts& entry : costs) {
            functions[startOf(entry.address)].lines[lineOf(entry.address)] += entry.costs;
            total += entry.costs;
        }
        for (const Call& call : counts.calls()) {
            functions[startOf(call.site)].calls.push_back(&call);
        }
        std::fprintf(file,
                     "# callgrind format\nversion: 1\ncreator: tarn-headless\ncmd: %s\npositions: line\n"
                     "event: Ir : Instructions\nevent: Pixels : Pixels written by the GS\n"
                     "event: Words : Words transferred to the GS\nevents: Ir Pixels Words\nsummary:",
                     program.c_str());
        writeCosts(total);
        for (const auto& [start, function] : functions) {
            writeFunction(start, function);
        }
        std::fputs("\ntotals:", file);
        writeCosts(total);
    }

  private:
    /// A function is identified by its start. All addresses without a symbol count as one function.
    u32 startOf(u32 address) const {
        const Symbol* symbol = table.symbolAt(address);
        return symbol != nullptr ? symbol->first : 0;
    }
    const std::string& nameOf(u32 start) const {
        const Symbol* symbol = table.symbolAt(start);
        return symbol != nullptr ? symbol->name : unknownName;
    }
    Line lineOf(u32 address) const {
        const LineRange* range = table.lineAt(address);
        return range != nullptr ? Line{&table.files[range->file], range->line} : Line{&unknownName, 0};
    }

    void writeCosts(const Costs& costs) const {
        std::fprintf(file, " %llu %llu %llu\n", costs.instructions, costs.pixels, costs.words);
    }

    void goTo(const Line& line) {
        if (*line.file != *currentFile) {
            fileNames.write(file, "fe", *line.file);
            currentFile = line.file;
        }
    }

    void writeFunction(u32 start, const FunctionCosts& function) {
        std::fputc('\n', file);
        currentFile = lineOf(start).file;
        fileNames.write(file, "fl", *currentFile);
        functionNames.write(file, "fn", nameOf(start));
        for (const auto& [line, costs] : function.lines) {
            goTo(line);
            std::fprintf(file, "%u", line.number);
            writeCosts(costs);
        }
        for (const Call* call : function.calls) {
            const Line site = lineOf(call->site);
            const Line target = lineOf(call->target);
            goTo(site);
            fileNames.write(file, "cfi", *target.file);
            functionNames.write(file, "cfn", nameOf(startOf(call->target)));
            std::fprintf(file, "calls=%llu %u\n%u", call->count, target.number, site.number);
            writeCosts(call->inclusive);
        }
    }

    std::FILE* file;
    const SymbolTable& table;
    const std::string unknownName = unknown;
    std::map<u32, FunctionCosts> functions;
    NameList fileNames;
    NameList functionNames;
    const std::string* currentFile = &unknownName;
};

}  // namespace

void writeCallgrind(std::FILE* file, const ExecutionCounts& counts, const SymbolTable& table,
                    const std::string& program) {
    Writer(file, table).write(counts, program);
}

}  // namespace tarn::symbols
