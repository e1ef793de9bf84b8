// Reading the symbols and line tables of an ELF file.
//
// libelf and libdw are not safe on malformed files, so they run in a separate process, which passes the
// tables back as bytes.
#include "symbols/elf_symbols.h"

#include "base/file.h"
#include "base/isolated.h"
#include "base/object_bytes.h"
#include "base/printable.h"

#include <algorithm>
#include <cstring>
#include <elfutils/libdw.h>
#include <filesystem>
#include <gelf.h>
#include <memory>
#include <span>
#include <unordered_map>

namespace tarn::symbols {
namespace {

// More than any 32 MB program has.
constexpr std::size_t symbolLimit = 1'000'000;
constexpr std::size_t lineLimit = 4'000'000;
constexpr std::size_t nameLimit = 1000;  // characters of a name

using ElfPtr = std::unique_ptr<Elf, decltype([](Elf* elf) { elf_end(elf); })>;
using DwarfPtr = std::unique_ptr<Dwarf, decltype([](Dwarf* dwarf) { dwarf_end(dwarf); })>;

struct Section {
    u32 first = 0;
    u32 end = 0;
    bool isCode = false;
};

/// The sections that are loaded into guest memory, by index; others are empty.
std::vector<Section> sectionsOf(Elf* elf) {
    std::vector<Section> sections;
    std::size_t count = 0;
    elf_getshdrnum(elf, &count);
    for (std::size_t i = 0; i < count; ++i) {
        GElf_Shdr header{};
        const bool isMapped =
            gelf_getshdr(elf_getscn(elf, i), &header) != nullptr && (header.sh_flags & SHF_ALLOC) != 0;
        const u32 first = isMapped ? foldAddress(header.sh_addr) : 0;
        const u32 size = isMapped ? static_cast<u32>(std::min<u64>(header.sh_size, ~first)) : 0;
        sections.push_back({first, first + size, (header.sh_flags & SHF_EXECINSTR) != 0});
    }
    return sections;
}

// Symbols.

struct Candidate {
    Symbol symbol;
    u32 rank;  ///< lower is preferred
    bool isSized;
};

u32 rankOf(const GElf_Sym& symbol) {
    const u32 type = GELF_ST_TYPE(symbol.st_info) == STT_NOTYPE ? 4 : 0;
    switch (GELF_ST_BIND(symbol.st_info)) {
    case STB_GLOBAL:
        return type;
    case STB_WEAK:
        return type + 1;
    default:
        return type + 2;
    }
}

/// What a symbol names in guest memory; nothing for the compiler's own labels and absolute values.
std::optional<Candidate> candidateFor(const GElf_Sym& symbol, std::span<const char> names,
                                      std::span<const Section> sections) {
    const int type = GELF_ST_TYPE(symbol.st_info);
    const bool isNamed = type == STT_FUNC || type == STT_OBJECT || type == STT_NOTYPE;
    if (!isNamed || symbol.st_shndx >= sections.size() || symbol.st_name >= names.size()) {
        return std::nullopt;
    }
    const Section& section = sections[symbol.st_shndx];
    const u32 first = foldAddress(symbol.st_value);
    if (section.first == section.end || first < section.first || first > section.end) {
        return std::nullopt;
    }
    const auto text = names.subspan(symbol.st_name);
    std::string name(text.data(), strnlen(text.data(), std::min(text.size(), nameLimit)));
    if (name.empty() || name.starts_with('$') || name.starts_with(".L")) {
        return std::nullopt;
    }
    const bool isSized = symbol.st_size != 0 && symbol.st_size <= section.end - first;
    const u32 end = isSized ? first + static_cast<u32>(symbol.st_size) : section.end;
    return Candidate{{first, end, section.isCode, printable(name)}, rankOf(symbol), isSized};
}

std::vector<Candidate> candidatesIn(Elf* elf, std::span<const Section> sections) {
    std::vector<Candidate> candidates;
    for (Elf_Scn* scn = nullptr; (scn = elf_nextscn(elf, scn)) != nullptr;) {
        GElf_Shdr header{};
        if (gelf_getshdr(scn, &header) == nullptr || header.sh_type != SHT_SYMTAB) {
            continue;
        }
        Elf_Data* const table = elf_getdata(scn, nullptr);
        const Elf_Data* const strings = elf_getdata(elf_getscn(elf, header.sh_link), nullptr);
        if (table == nullptr || strings == nullptr || strings->d_buf == nullptr) {
            continue;
        }
        const std::span names(static_cast<const char*>(strings->d_buf), strings->d_size);
        GElf_Sym symbol;
        for (int i = 0; gelf_getsym(table, i, &symbol) != nullptr && candidates.size() < symbolLimit; ++i) {
            if (auto candidate = candidateFor(symbol, names, sections)) {
                candidates.push_back(*std::move(candidate));
            }
        }
    }
    std::ranges::stable_sort(candidates, [](const Candidate& a, const Candidate& b) {
        return std::pair(a.symbol.first, a.rank) < std::pair(b.symbol.first, b.rank);
    });
    return candidates;
}

/// Keeps one symbol for each address: the best of several, and a function rather than symbols inside it.
void takeSymbols(SymbolTable& table, const std::vector<Candidate>& candidates) {
    u32 covered = 0;  // the end of the last symbol with a size
    for (const Candidate& candidate : candidates) {
        const Symbol& symbol = candidate.symbol;
        table.byName.emplace_back(symbol.name, symbol.first);
        const bool isNew = table.symbols.empty() || symbol.first != table.symbols.back().first;
        if (!isNew || symbol.first < covered || symbol.first == symbol.end) {
            continue;
        }
        if (!table.symbols.empty()) {
            table.symbols.back().end = std::min(table.symbols.back().end, symbol.first);
        }
        table.symbols.push_back(symbol);
        covered = candidate.isSized ? symbol.end : covered;
    }
    std::ranges::stable_sort(table.byName, {}, &std::pair<std::string, u32>::first);
}

// Lines.

/// Turns the rows of a line table into ranges.
class LineCollector {
  public:
    LineCollector(SymbolTable& destination, std::span<const Section> allSections)
        : table(destination), sections(allSections) {}

    void add(Dwarf_Lines* rows, std::size_t count) {
        for (std::size_t i = 0; i + 1 < count && table.lines.size() < lineLimit; ++i) {
            Dwarf_Line* const row = dwarf_onesrcline(rows, i);
            Dwarf_Addr first = 0;
            Dwarf_Addr end = 0;
            bool endsSequence = true;
            int line = 0;
            const char* const file = dwarf_linesrc(row, nullptr, nullptr);
            if (dwarf_lineendsequence(row, &endsSequence) != 0 || endsSequence ||
                dwarf_lineaddr(row, &first) != 0 || dwarf_lineno(row, &line) != 0 || line <= 0 ||
                dwarf_lineaddr(dwarf_onesrcline(rows, i + 1), &end) != 0 || file == nullptr) {
                continue;
            }
            const u32 offset = foldAddress(first);
            if (first < end && isCode(offset)) {
                const u32 size = static_cast<u32>(std::min<u64>(end - first, ~offset));
                table.lines.push_back({offset, offset + size, numberOf(file), static_cast<u32>(line)});
            }
        }
    }

  private:
    /// The lines of code that the linker has removed stay, at address 0.
    bool isCode(u32 address) const {
        return std::ranges::any_of(sections, [&](const Section& section) {
            return section.isCode && address >= section.first && address < section.end;
        });
    }

    u32 numberOf(const char* file) {
        const std::string_view given(file, strnlen(file, nameLimit));
        std::string name = printable(std::filesystem::path(given).lexically_normal().string());
        const auto [known, isNew] = numbers.try_emplace(std::move(name), table.files.size());
        if (isNew) {
            table.files.push_back(known->first);
        }
        return known->second;
    }

    SymbolTable& table;
    std::span<const Section> sections;
    std::unordered_map<std::string, u32> numbers;
};

void takeLines(SymbolTable& table, Elf* elf, std::span<const Section> sections) {
    const DwarfPtr dwarf(dwarf_begin_elf(elf, DWARF_C_READ, nullptr));
    LineCollector collector(table, sections);
    Dwarf_Off next = 0;
    std::size_t headerSize = 0;
    for (Dwarf_Off unit = 0; dwarf != nullptr && dwarf_nextcu(dwarf.get(), unit, &next, &headerSize, nullptr,
                                                              nullptr, nullptr) == 0;
         unit = next) {
        Dwarf_Die die;
        Dwarf_Lines* rows = nullptr;
        std::size_t count = 0;
        if (dwarf_offdie(dwarf.get(), unit + headerSize, &die) != nullptr &&
            dwarf_getsrclines(&die, &rows, &count) == 0) {
            collector.add(rows, count);
        }
    }
    std::ranges::stable_sort(table.lines, {}, &LineRange::first);
    std::vector<LineRange> apart;
    for (const LineRange& range : table.lines) {
        if (apart.empty() || range.first >= apart.back().end) {
            apart.push_back(range);
        }
    }
    table.lines = std::move(apart);
}

SymbolTable parse(int descriptor) {
    SymbolTable table;
    elf_version(EV_CURRENT);
    const ElfPtr elf(elf_begin(descriptor, ELF_C_READ, nullptr));
    GElf_Ehdr header{};
    if (elf == nullptr || gelf_getehdr(elf.get(), &header) == nullptr || header.e_machine != EM_MIPS ||
        header.e_ident[EI_CLASS] != ELFCLASS32 || header.e_ident[EI_DATA] != ELFDATA2LSB) {
        return table;
    }
    const std::vector<Section> sections = sectionsOf(elf.get());
    takeSymbols(table, candidatesIn(elf.get(), sections));
    takeLines(table, elf.get(), sections);
    return table;
}

// The tables as bytes.

class Packer {
  public:
    void operator()(u32 number) {
        const std::span<const u8> added = bytesOfObject(number);
        bytes.insert(bytes.end(), added.begin(), added.end());
    }
    void operator()(bool flag) { (*this)(u32{flag}); }
    void operator()(const std::string& text) {
        (*this)(static_cast<u32>(text.size()));
        bytes.insert(bytes.end(), text.begin(), text.end());
    }
    template <typename Item, typename Fields>
    void list(const std::vector<Item>& items, Fields fields) {
        (*this)(static_cast<u32>(items.size()));
        for (const Item& item : items) {
            fields(*this, item);
        }
    }
    std::vector<u8> bytes;
};

class Unpacker {
  public:
    explicit Unpacker(std::span<const u8> packed) : bytes(packed) {}

    void operator()(u32& number) { take(&number, sizeof number); }
    void operator()(bool& flag) {
        u32 number = 0;
        (*this)(number);
        flag = number != 0;
    }
    void operator()(std::string& text) {
        u32 size = 0;
        (*this)(size);
        text.resize(std::min<std::size_t>(size, bytes.size()));
        take(text.data(), text.size());
    }
    template <typename Item, typename Fields>
    void list(std::vector<Item>& items, Fields fields) {
        u32 count = 0;
        for ((*this)(count); count > 0 && !bytes.empty(); --count) {
            fields(*this, items.emplace_back());
        }
    }

  private:
    void take(void* destination, std::size_t size) {
        size = std::min(size, bytes.size());
        std::memcpy(destination, bytes.data(), size);
        bytes = bytes.subspan(size);
    }
    std::span<const u8> bytes;
};

/// The parts of a table that are packed and unpacked.
template <typename Transfer, typename Table>
void transfer(Transfer& lists, Table& table) {
    lists.list(table.symbols, [](Transfer& each, auto& symbol) {
        each(symbol.first), each(symbol.end), each(symbol.isCode), each(symbol.name);
    });
    lists.list(table.lines, [](Transfer& each, auto& range) {
        each(range.first), each(range.end), each(range.file), each(range.line);
    });
    lists.list(table.files, [](Transfer& each, auto& file) { each(file); });
    lists.list(table.byName, [](Transfer& each, auto& entry) { each(entry.first), each(entry.second); });
}

}  // namespace

SymbolTable readSymbols(const std::string& path) {
    SymbolTable table;
    const FilePtr file = openInputFile(path.c_str());
    if (file == nullptr) {
        return table;
    }
    const auto packed = runIsolated([&] {
        Packer packer;
        const SymbolTable read = parse(fileno(file.get()));
        transfer(packer, read);
        return std::move(packer.bytes);
    });
    if (!packed) {
        std::fprintf(stderr, "tarn-headless: the symbols of %s cannot be read\n", printable(path).c_str());
        return table;
    }
    Unpacker unpacker(*packed);
    transfer(unpacker, table);
    return table;
}

}  // namespace tarn::symbols
