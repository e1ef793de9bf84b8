// Checks the code of a guest program: every instruction must be implemented, and must do what compilers
// expect of it, which some of the described processor do not. Prints a line for each instruction that fails,
// and exits with status 1.
//
// --every-instruction is for a program that tries them all: instructions that mislead compilers are accepted,
// and each instruction that does not occur fails. --complete-cpu checks for the complete processor, on which
// all do what compilers expect.
#include "base/bits.h"
#include "base/file.h"
#include "base/types.h"
#include "r5900/interpreter.h"
#include "r5900/operation.h"

#include <cstdio>
#include <cstring>
#include <elf.h>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using namespace tarn;

namespace {

/// The words of one executable section.
struct Code {
    u32 address;
    std::vector<u32> words;
    bool complete;  ///< the file has all of it
};

std::vector<u8> readFile(const char* path) {
    std::vector<u8> content;
    if (const FilePtr file = openInputFile(path)) {
        u8 block[4096];
        while (const std::size_t count = std::fread(block, 1, sizeof block, file.get()))
            content.insert(content.end(), block, block + count);
    }
    return content;
}

/// A structure of the file at an offset, when the file is that long.
template <typename T>
std::optional<T> at(const std::vector<u8>& file, std::size_t offset) {
    if (offset > file.size() || file.size() - offset < sizeof(T))
        return std::nullopt;
    T value;
    std::memcpy(&value, file.data() + offset, sizeof(T));
    return value;
}

std::vector<Code> executableSections(const std::vector<u8>& file) {
    std::vector<Code> sections;
    const auto header = at<Elf32_Ehdr>(file, 0);
    if (!header)
        return sections;
    for (unsigned i = 0; i < header->e_shnum; i++) {
        const auto section = at<Elf32_Shdr>(file, header->e_shoff + i * sizeof(Elf32_Shdr));
        if (!section || (section->sh_flags & SHF_EXECINSTR) == 0)
            continue;
        Code& code = sections.emplace_back(Code{section->sh_addr, {}, true});
        for (std::size_t offset = 0; code.complete && offset + 4 <= section->sh_size; offset += 4) {
            const auto word = at<u32>(file, section->sh_offset + offset);
            code.complete = word.has_value();
            if (word)
                code.words.push_back(*word);
        }
    }
    return sections;
}

constexpr u32 major(u32 word) { return bits(word, 26, 6); }
constexpr u32 rs(u32 word) { return bits(word, 21, 5); }
constexpr u32 rt(u32 word) { return bits(word, 16, 5); }
constexpr u32 rd(u32 word) { return bits(word, 11, 5); }
constexpr u32 sa(u32 word) { return bits(word, 6, 5); }
constexpr u32 function(u32 word) { return bits(word, 0, 6); }

constexpr bool isSpecial(u32 word, u32 code) { return major(word) == 0 && function(word) == code; }

/// A product without a destination: MULT, DMULTU, MULT1.
constexpr bool isProductIntoR0(u32 word) {
    const bool product =
        isSpecial(word, 24) || isSpecial(word, 29) || (major(word) == 28 && function(word) == 24);
    return product && rd(word) == 0;
}

constexpr bool isMfc1(u32 word) { return major(word) == 17 && rs(word) == 0; }
constexpr bool isMtc1(u32 word) { return major(word) == 17 && rs(word) == 4; }
constexpr bool isCvtS(u32 word) { return major(word) == 17 && rs(word) == 20 && function(word) == 32; }

/// How the instruction at an index differs from what compilers expect, or null.
const char* surpriseIn(const std::vector<u32>& words, std::size_t index) {
    const u32 word = words[index];
    const auto around = [&](std::size_t distanceBack) {
        return index >= distanceBack ? words[index - distanceBack] : 0;
    };
    if (isProductIntoR0(word))
        return "writes r0: name a destination";
    if (isMfc1(word)) {
        const u32 next = index + 1 < words.size() ? words[index + 1] : 0;
        const bool extends = isSpecial(next, 0) && rt(next) == rt(word) && sa(next) == 0 && rd(next) != 0;
        return extends ? nullptr : "converts and leaves the upper half clear: use toInteger() or bitsOf()";
    }
    if (isCvtS(word)) {
        const u32 move = around(1);
        const u32 right = around(2);
        const u32 left = around(3);
        const bool clears = isMtc1(move) && rd(move) == rd(word) && isSpecial(right, 62) && sa(right) == 0 &&
                            rd(right) == rt(move) && isSpecial(left, 60) && sa(left) == 0 &&
                            rd(left) == rt(right);
        return clears ? nullptr : "reads 64 bits, unsigned: use toReal()";
    }
    return nullptr;
}

/// One word for each place of the dispatch tables.
std::vector<u32> everyPlace() {
    std::vector<u32> words;
    for (u32 code = 0; code < 64; code++) {
        words.push_back(code << 26);
        words.push_back(code);
        words.push_back(16u << 26 | 16u << 21 | code);
        words.push_back(28u << 26 | code);
        for (u32 format = 16; format < 22; format++)
            words.push_back(17u << 26 | format << 21 | code);
    }
    for (u32 code = 0; code < 32; code++) {
        words.push_back(1u << 26 | code << 16);
        words.push_back(16u << 26 | code << 21);
        words.push_back(17u << 26 | code << 21);
        words.push_back(17u << 26 | 8u << 21 | (code & 3) << 16);
    }
    return words;
}

unsigned reportMissing(const std::vector<Code>& sections) {
    std::set<std::string_view> present;
    for (const Code& code : sections)
        for (const u32 word : code.words)
            present.insert(mnemonicOf(word));
    std::set<std::string> missing;
    for (const u32 word : everyPlace())
        if (isImplemented(word) && !present.contains(mnemonicOf(word)))
            missing.insert(mnemonicOf(word));
    for (const std::string& mnemonic : missing)
        std::fprintf(stderr, "%s does not occur\n", mnemonic.c_str());
    return static_cast<unsigned>(missing.size());
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const bool hasOption = argumentCount == 3;
    const bool everyInstruction = hasOption && std::strcmp(arguments[1], "--every-instruction") == 0;
    const bool completeCpu = hasOption && std::strcmp(arguments[1], "--complete-cpu") == 0;
    if (argumentCount != 2 && !everyInstruction && !completeCpu) {
        std::fprintf(stderr, "usage: guest-check [--every-instruction | --complete-cpu] FILE.elf\n");
        return 2;
    }
    const char* const path = arguments[argumentCount - 1];
    r5900::chooseProcessor(completeCpu);
    const std::vector<Code> sections = executableSections(readFile(path));
    if (sections.empty()) {
        std::fprintf(stderr, "%s: no code found\n", path);
        return 1;
    }
    unsigned faults = everyInstruction ? reportMissing(sections) : 0;
    for (const Code& code : sections) {
        const auto faultAt = [&](std::size_t i) {
            return !isImplemented(code.words[i])     ? "stops the processor"
                   : everyInstruction || completeCpu ? nullptr
                                                     : surpriseIn(code.words, i);
        };
        for (std::size_t i = 0; i < code.words.size(); i++)
            if (const char* const fault = faultAt(i)) {
                std::fprintf(stderr, "%s: %8.8zx: %8.8x %s %s\n", path, code.address + i * 4, code.words[i],
                             mnemonicOf(code.words[i]), fault);
                faults++;
            }
        if (!code.complete) {
            std::fprintf(stderr, "%s: the code at %8.8x is cut off\n", path, code.address);
            faults++;
        }
    }
    return faults == 0 ? 0 : 1;
}
