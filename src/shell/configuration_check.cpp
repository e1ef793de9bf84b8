// The keys of the configuration, and the warnings about unknown keys and unusable values.
#include "shell/configuration_check.h"

#include "base/configuration_source.h"
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

enum class ValueKind : u8 { Text, Flag, Depth, Side, Count, Port };

struct KnownKey {
    std::string_view section;
    std::string_view name;
    ValueKind kind = ValueKind::Flag;
};

/// Every key that is read anywhere.
constexpr std::array<KnownKey, 17> knownKeys{{
    {"General", "Elf", ValueKind::Text},
    {"General", "Debug_op"},
    {"General", "Debug_dma"},
    {"General", "Debug_syscall"},
    {"General", "Debug_GS"},
    {"General", "Steps_per_poll", ValueKind::Count},
    {"General", "Console"},
    {"General", "Complete_cpu"},
    {"General", "Extra_keys"},
    {"General", "Gdb_port", ValueKind::Port},
    {"Video", "Width", ValueKind::Side},
    {"Video", "Height", ValueKind::Side},
    {"Video", "Bpp", ValueKind::Depth},
    {"Video", "Stretch", ValueKind::Count},
    {"Video", "Frame_rate", ValueKind::Count},
    {"Video", "Blend"},
    {"Video", "Fit_window"},
}};

constexpr unsigned warningLimit = 20;  ///< a file with more is probably not a configuration file

char lowerCase(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }

bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

/// The key of that name, or null if it is unknown.
const KnownKey* findKey(std::string_view section, std::string_view name) {
    const auto* known = std::ranges::find_if(knownKeys, [&](const KnownKey& each) {
        return sameName(section, each.section) && sameName(name, each.name);
    });
    return known != knownKeys.end() ? known : nullptr;
}

/// The edit distance of two names: letters to insert, remove or change. Only the
/// beginning of a very long name is compared, which bounds the work for hostile files.
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

/// The known key that is most similar. The right name in the wrong section is nearer than any misspelling.
const KnownKey& nearestKey(std::string_view section, std::string_view name) {
    const auto distance = [&](const KnownKey& known) {
        constexpr unsigned nameWeight = 4;
        return editDistance(name, known.name) * nameWeight +
               std::min(editDistance(section, known.section), nameWeight - 1);
    };
    return *std::ranges::min_element(knownKeys, {}, distance);
}

/// Whether the whole text is a number as the configuration reads it.
bool isNumber(const std::string& text) {
    char* end = nullptr;
    std::strtol(text.c_str(), &end, 0);
    return end != text.c_str() && *end == '\0';
}

/// Describes the values that a kind allows, or returns null when this is one of them. Some others work, but
/// are cut to 8 or 16 bits.
const char* expectedInstead(ValueKind kind, int value) {
    constexpr int largestSide = 16383;  // of a surface, in pixels
    switch (kind) {
    case ValueKind::Flag:
        return value == 0 || value == 1 ? nullptr : "0 or 1";
    case ValueKind::Depth:
        return value == 15 || value == 16 || value == 24 || value == 32 ? nullptr : "15, 16, 24 or 32";
    case ValueKind::Side:
        return value >= 1 && value <= largestSide ? nullptr : "a number from 1 to 16383";
    case ValueKind::Count:
        return value >= 0 ? nullptr : "0 or more";
    case ValueKind::Port:
        return value >= 0 && value <= 0xFFFF ? nullptr : "a number from 0 to 65535";
    default:
        return nullptr;
    }
}

/// Each returns whether there was something to warn about.

bool warnAboutSection(const char* origin, std::string_view section) {
    const auto distance = [&](const KnownKey& known) { return editDistance(section, known.section); };
    const KnownKey& nearest = *std::ranges::min_element(knownKeys, {}, distance);
    if (distance(nearest) == 0) {
        return false;
    }
    std::fprintf(stderr, "%s: unknown section \"%s\" is ignored; the nearest known section is \"%s\"\n",
                 origin, printable(section).c_str(), nearest.section.data());
    return true;
}

bool warnAboutValue(const char* origin, const IniFile& file, const IniFile::Entry& entry) {
    const std::size_t colon = entry.name.find(':');
    const std::string_view section = std::string_view(entry.name).substr(0, colon);
    const std::string_view name = std::string_view(entry.name).substr(colon + 1);
    const KnownKey* known = findKey(section, name);
    if (known == nullptr) {
        const KnownKey& nearest = nearestKey(section, name);
        std::fprintf(stderr, "%s: unknown key \"%s\" is ignored; the nearest known key is \"%s:%s\"\n",
                     origin, printable(entry.name).c_str(), nearest.section.data(), nearest.name.data());
        return true;
    }
    if (known->kind != ValueKind::Text && !isNumber(*entry.value)) {
        std::fprintf(stderr, "%s: \"%s:%s\" is \"%s\", which is not a number; it is taken as %d\n", origin,
                     known->section.data(), known->name.data(), printable(*entry.value).c_str(),
                     file.number(entry.name.c_str(), 0));
        return true;
    }
    if (const char* expected = expectedInstead(known->kind, file.number(entry.name.c_str(), 0))) {
        std::fprintf(stderr, "%s: \"%s:%s\" is %s, which makes no sense; it should be %s\n", origin,
                     known->section.data(), known->name.data(), printable(*entry.value).c_str(), expected);
        return true;
    }
    return false;
}

}  // namespace

std::string complaintAboutKey(std::string_view key) {
    const std::size_t colon = std::min(key.find(':'), key.size());
    const std::string_view section = key.substr(0, colon);
    const std::string_view name = key.substr(std::min(colon + 1, key.size()));
    if (findKey(section, name) != nullptr) {
        return "";
    }
    const KnownKey& nearest = nearestKey(section, name);
    return "unknown key \"" + printable(key) + "\"; the nearest known key is \"" +
           std::string(nearest.section) + ":" + std::string(nearest.name) + "\"";
}

void warnAboutConfiguration(const IniFile& file, const char* origin) {
    const std::vector<IniFile::Entry> entries = file.entries();
    unsigned warnings = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (warnings == warningLimit) {
            std::fprintf(stderr, "%s: further warnings are left out\n", origin);
            return;
        }
        const std::string& name = entries[i].name;
        if (entries[i].value) {
            warnings += warnAboutValue(origin, file, entries[i]) ? 1 : 0;
        } else if (i + 1 == entries.size() || !entries[i + 1].name.starts_with(name + ":")) {
            // If the section has keys, the warnings about them are more helpful.
            warnings += warnAboutSection(origin, name) ? 1 : 0;
        }
    }
}

}  // namespace tarn
