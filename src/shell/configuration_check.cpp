// The list of the configuration file's keys and the warnings about what does not fit it.
#include "shell/configuration_check.h"

#include "base/ini_file.h"
#include "base/printable.h"
#include "base/types.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {
namespace {

struct KnownKey {
    std::string_view section;
    std::string_view name;
    bool isNumber = true;
};

/// Every key that is read anywhere.
constexpr std::array<KnownKey, 14> knownKeys{{
    {"General", "Elf", false},
    {"General", "Debug_op"},
    {"General", "Debug_dma"},
    {"General", "Debug_syscall"},
    {"General", "Debug_GS"},
    {"General", "Steps_per_poll"},
    {"General", "Console"},
    {"General", "Complete_cpu"},
    {"Video", "Width"},
    {"Video", "Height"},
    {"Video", "Bpp"},
    {"Video", "Stretch"},
    {"Video", "Frame_rate"},
    {"Video", "Blend"},
}};

constexpr unsigned warningLimit = 20;  ///< a file with more is no configuration file

char lowerCase(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }

bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

/// How many letters have to be inserted, removed or changed to make one name of the other. Of a name longer
/// than any that is known, the beginning tells enough: the files are anyone's, and the work is a product.
unsigned editDistance(std::string_view name, std::string_view known) {
    constexpr std::size_t longest = 24;
    std::array<char, longest> letters{};
    const std::size_t count = name.copy(letters.data(), longest);
    std::transform(letters.begin(), letters.begin() + count, letters.begin(), lowerCase);
    std::array<unsigned, longest + 1> column;
    std::iota(column.begin(), column.end(), 0U);
    for (const char letter : known) {
        const char wanted = lowerCase(letter);
        unsigned diagonal = column[0]++;
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned change = diagonal + (letters[i] == wanted ? 0 : 1);
            diagonal = column[i + 1];
            column[i + 1] = std::min(change, std::min(column[i], diagonal) + 1);
        }
    }
    return column[count];
}

/// The known key that was most likely meant. A right name in the wrong section is nearer than any
/// misspelling.
const KnownKey& nearestKey(std::string_view section, std::string_view name) {
    const auto distance = [&](const KnownKey& known) {
        constexpr unsigned nameWeight = 4;
        return editDistance(name, known.name) * nameWeight +
               std::min(editDistance(section, known.section), nameWeight - 1);
    };
    return *std::ranges::min_element(knownKeys, {}, distance);
}

/// Whether the whole text is a number by the rules that numbers are read with.
bool isNumber(const std::string& text) {
    char* end = nullptr;
    std::strtol(text.c_str(), &end, 0);
    return end != text.c_str() && *end == '\0';
}

/// Each returns whether there was something to warn about.

bool warnAboutSection(std::string_view section) {
    const auto distance = [&](const KnownKey& known) { return editDistance(section, known.section); };
    const KnownKey& nearest = *std::ranges::min_element(knownKeys, {}, distance);
    if (distance(nearest) == 0) {
        return false;
    }
    std::fprintf(stderr, "%s: unknown section \"%s\" is ignored; the nearest known section is \"%s\"\n",
                 configurationPath, printable(section).c_str(), nearest.section.data());
    return true;
}

bool warnAboutValue(const IniFile& file, const IniFile::Entry& entry) {
    const std::size_t colon = entry.name.find(':');
    const std::string_view section = std::string_view(entry.name).substr(0, colon);
    const std::string_view name = std::string_view(entry.name).substr(colon + 1);
    const auto known = std::ranges::find_if(knownKeys, [&](const KnownKey& each) {
        return sameName(section, each.section) && sameName(name, each.name);
    });
    if (known == knownKeys.end()) {
        const KnownKey& nearest = nearestKey(section, name);
        std::fprintf(stderr, "%s: unknown key \"%s\" is ignored; the nearest known key is \"%s:%s\"\n",
                     configurationPath, printable(entry.name).c_str(), nearest.section.data(),
                     nearest.name.data());
        return true;
    }
    if (known->isNumber && !isNumber(*entry.value)) {
        std::fprintf(stderr, "%s: \"%s:%s\" is \"%s\", which is not a number; it is taken as %d\n",
                     configurationPath, known->section.data(), known->name.data(),
                     printable(*entry.value).c_str(), file.number(entry.name.c_str(), 0));
        return true;
    }
    return false;
}

}  // namespace

void warnAboutConfiguration(const IniFile& file) {
    const std::vector<IniFile::Entry> entries = file.entries();
    unsigned warnings = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (warnings == warningLimit) {
            std::fprintf(stderr, "%s: further warnings are left out\n", configurationPath);
            return;
        }
        const std::string& name = entries[i].name;
        if (entries[i].value) {
            warnings += warnAboutValue(file, entries[i]) ? 1 : 0;
        } else if (i + 1 == entries.size() || !entries[i + 1].name.starts_with(name + ":")) {
            // Of a section with keys, the warnings about its keys say more.
            warnings += warnAboutSection(name) ? 1 : 0;
        }
    }
}

}  // namespace tarn
