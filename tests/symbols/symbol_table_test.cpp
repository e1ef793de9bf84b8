// The symbol table of a guest program, and what damaged files make of it.
#include "symbols/elf_symbols.h"

#include "machine/areas.h"
#include "support/run_directory.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

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

}  // namespace
}  // namespace tarn::symbols
