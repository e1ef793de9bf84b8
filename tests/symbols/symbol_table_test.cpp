// The symbol table of a guest program, what damaged files make of it, and the counting of calls.
#include "symbols/elf_symbols.h"

#include "base/isolated.h"
#include "machine/areas.h"
#include "support/run_directory.h"
#include "symbols/execution_counts.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

namespace tarn::symbols {
namespace {

const std::string program = TARN_BINARY_DIRECTORY "/guest/kernel.elf";

TEST(SymbolTable, FindsAndDescribes) {
    const SymbolTable table = readSymbols(program);
    const u32 start = table.addressOf("_start").value_or(0);
    const u32 exit = table.addressOf("Exit").value_or(0);
    const u32 heap = table.addressOf("heapNext").value_or(0);
    EXPECT_EQ(start, 0x00100000U);
    EXPECT_EQ(table.addressOf("nothing"), std::nullopt);
    EXPECT_EQ(table.addressOf("__heap_size"), std::nullopt) << "a number, no address";

    const std::string line = "(kernel_calls.S:" + std::to_string(table.lineAt(exit)->line) + ")";
    for (const auto& [address, expected] :
         std::initializer_list<std::pair<u64, std::string>>{{exit, "Exit " + line},
                                                            {exit + 8, "Exit+0x8 " + line},
                                                            {exit | 0x80000000, "Exit " + line},
                                                            {exit | 0x30000000, "Exit " + line},
                                                            {0xFFFFFFFF00000000 | exit, "Exit " + line},
                                                            {heap, "heapNext"},
                                                            {heap + 2, "heapNext+0x2"},
                                                            {start - 1, ""},
                                                            {mainMemorySize - 1, ""},
                                                            {0x12000000 | exit, ""}}) {
        EXPECT_EQ(table.describe(address), expected) << std::hex << address;
    }
    EXPECT_EQ(table.symbolAt(table.symbols.back().end), nullptr);
    EXPECT_EQ(SymbolTable().describe(exit), "");
    for (const std::string path : {"/", "/dev/null", "/etc/passwd", "/bin/sh", "missing"}) {
        EXPECT_TRUE(readSymbols(path).symbols.empty()) << path;
    }
}

/// What the users of a table rely on, and what reaches a terminal.
void expectSound(const SymbolTable& table) {
    u32 end = 0;
    for (const Symbol& symbol : table.symbols) {
        ASSERT_LE(end, symbol.first);
        ASSERT_LT(symbol.first, symbol.end);
        ASSERT_TRUE(std::ranges::none_of(symbol.name, [](char c) { return c > 0 && c < ' '; }));
        end = symbol.end;
    }
    end = 0;
    for (const LineRange& range : table.lines) {
        ASSERT_LE(end, range.first);
        ASSERT_LT(range.first, range.end);
        ASSERT_LT(range.file, table.files.size());
        end = range.end;
    }
}

TEST(SymbolTable, SurvivesDamagedFiles) {
    const test::RunDirectory directory;
    const std::string whole = test::RunDirectory::read(program);
    for (const std::size_t place : {4U, 5U, 18U}) {  // class, order of bytes, machine
        std::string other = whole;
        other[place] = 2;
        directory.write("other.elf", other);
        EXPECT_TRUE(readSymbols("other.elf").symbols.empty());
    }
    std::mt19937 random(1);
    // The tables that say where everything is stand at both ends.
    const auto place = [&](std::size_t size) {
        const std::size_t table = 48 * 40;
        return random() % 2 == 0   ? random() % 64
               : random() % 2 == 0 ? size - 1 - random() % table
                                   : random() % size;
    };
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        std::string damaged = whole;
        if (round % 4 == 0) {
            damaged.resize(1 + random() % whole.size());
        }
        for (auto count = round % 4 == 0 ? 0 : 1 + random() % 8; count > 0; --count) {
            damaged[place(damaged.size()) % damaged.size()] = static_cast<char>(random());
        }
        directory.write("damaged.elf", damaged);
        expectSound(readSymbols("damaged.elf"));
    }
}

TEST(Isolated, GivesAllBytesOrNothing) {
    EXPECT_EQ(runIsolated([] { return std::vector<u8>(300000, 7); }), std::vector<u8>(300000, 7));
    EXPECT_EQ(runIsolated([]() -> std::vector<u8> { _exit(1); }), std::nullopt);
    EXPECT_EQ(runIsolated([]() -> std::vector<u8> { std::abort(); }), std::nullopt);
}

constexpr u32 call = 3U << 26, back = 31U << 21 | 8, jump = 2U << 26;  // words of branches

TEST(ExecutionCounts, CallsWithoutRoomAreIgnoredUntilTheyReturn) {
    constexpr u32 deepest = 1 << 20;
    ExecutionCounts counts;
    counts.noteFunction(0x100);
    counts.noteFunction(0x300);
    for (u32 i = 0; i < deepest; ++i) {
        counts.branch(call, 0x10, 0x100, {});
    }
    counts.branch(call, 0x10, 0x200, {});
    counts.branch(jump, 0x204, 0x300, {});  // has no return of its own
    for (u32 i = 0; i < 1 + deepest; ++i) {
        counts.branch(back, 0x304, 0x18, {5, 0, 0});
    }
    counts.finish({9, 0, 0});
    ASSERT_EQ(counts.calls().size(), 1U);
    EXPECT_TRUE(counts.calls()[0].count == deepest && counts.calls()[0].inclusive == (Costs{5, 0, 0}));
}

/// Counts the calls that a program makes.
TEST(ExecutionCounts, CallsIncludeWhatTheyCallOnce) {
    ExecutionCounts counts;
    counts.noteFunction(0x100);
    counts.noteFunction(0x200);
    u64 now = 0;
    const auto branch = [&](u32 word, u64 pc, u64 target) {
        counts.branch(word, pc, target, {now += 10, 0, 0});
    };
    branch(call, 0x10, 0x100);   // at 10
    branch(call, 0x104, 0x100);  // which calls itself,
    branch(jump, 0x108, 0x200);  // goes on elsewhere,
    branch(back, 0x200, 0x10C);  // returns from both,
    branch(back, 0x110, 0x18);   // and ends, at 50
    branch(call, 0x30, 0x400);   // at 60
    branch(jump, 0x404, 0x200);  // goes on elsewhere,
    branch(back, 0x200, 0x38);   // and returns from both, at 80
    branch(back, 0x20, 0x18);    // leads nowhere
    counts.begin(0x100);
    counts.end(0x104);
    counts.transfer(0x102, 3, 4);
    counts.finish({now, 0, 0});
    ASSERT_EQ(counts.byAddress().size(), 1U);
    EXPECT_EQ(counts.byAddress()[0].costs, (Costs{1, 3, 4})) << "of the word";
    const std::vector<Call>& calls = counts.calls();
    ASSERT_EQ(calls.size(), 5U);
    EXPECT_TRUE(calls[0].count == 1 && calls[0].inclusive == (Costs{40, 0, 0}));
    EXPECT_TRUE(calls[1].count == 1 && calls[1].inclusive == Costs{}) << "a part of the first";
    EXPECT_TRUE(calls[2].count == 1 && calls[2].inclusive == (Costs{10, 0, 0}));
    EXPECT_EQ(calls[3].inclusive, (Costs{20, 0, 0})) << "not until the end";
}

}  // namespace
}  // namespace tarn::symbols
