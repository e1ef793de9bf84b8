// The coverage of a program's lines and functions in lcov's format.
#include "symbols/lcov_file.h"

#include <algorithm>
#include <map>

namespace tarn::symbols {
namespace {

struct FileCoverage {
    std::map<u32, u64> lines;  ///< how often each ran
    std::vector<const Symbol*> functions;
};

/// The highest count of an instruction in a range.
u64 countIn(const std::vector<AddressCosts>& costs, u32 first, u32 end) {
    u64 most = 0;
    for (auto at = std::ranges::lower_bound(costs, first & ~3U, {}, &AddressCosts::address);
         at != costs.end() && at->address < end; ++at) {
        most = std::max(most, at->costs.instructions);
    }
    return most;
}

std::vector<FileCoverage> coverageByFile(const std::vector<AddressCosts>& costs, const SymbolTable& table) {
    std::vector<FileCoverage> files(table.files.size());
    for (const LineRange& range : table.lines) {
        u64& count = files[range.file].lines[range.line];
        count = std::max(count, countIn(costs, range.first, range.end));
    }
    for (const Symbol& symbol : table.symbols) {
        const LineRange* const range = symbol.isCode ? table.lineAt(symbol.first) : nullptr;
        if (range != nullptr) {
            files[range->file].functions.push_back(&symbol);
        }
    }
    return files;
}

}  // namespace

void writeLcov(std::FILE* file, const ExecutionCounts& counts, const SymbolTable& table) {
    const std::vector<AddressCosts> costs = counts.byAddress();
    const std::vector<FileCoverage> files = coverageByFile(costs, table);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const FileCoverage& coverage = files[i];
        if (coverage.lines.empty()) {
            continue;
        }
        std::fprintf(file, "TN:\nSF:%s\n", table.files[i].c_str());
        std::size_t hit = 0;
        for (const Symbol* function : coverage.functions) {
            const u64 count = countIn(costs, function->first, function->first + 4);
            hit += count != 0 ? 1 : 0;
            std::fprintf(file, "FN:%u,%s\nFNDA:%llu,%s\n", table.lineAt(function->first)->line,
                         function->name.c_str(), count, function->name.c_str());
        }
        std::fprintf(file, "FNF:%zu\nFNH:%zu\n", coverage.functions.size(), hit);
        hit = 0;
        for (const auto& [line, count] : coverage.lines) {
            hit += count != 0 ? 1 : 0;
            std::fprintf(file, "DA:%u,%llu\n", line, count);
        }
        std::fprintf(file, "LF:%zu\nLH:%zu\nend_of_record\n", coverage.lines.size(), hit);
    }
}

}  // namespace tarn::symbols
