// Comparing two recordings, by checksums of each command and of what it changed.
#include "recording/comparison.h"

#include "base/checksum.h"
#include "base/object_bytes.h"
#include "gs/gs_records.h"
#include "gs/local_memory.h"
#include "machine/machine.h"
#include "recording/description.h"
#include "recording/player.h"
#include "recording/text.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tarn::recording {
namespace {

constexpr std::size_t shownPixels = 8;

struct CommandSums {
    u64 command = 0;  ///< of the command itself
    u64 pixels = 0;   ///< of the pixels that it can have changed
};

u64 sumOf(const std::vector<u32>& words) { return checksumOf(bytesOfElements(words)); }

void addArea(std::vector<u32>& words, const PixelBuffer& buffer, const Rectangle& area) {
    // Limited to the size of local memory, as indexes are taken modulo that.
    s64 left = localMemoryWords;
    for (s32 y = area.y; y < area.y + area.height && left > 0; ++y, left -= area.width) {
        for (s32 x = area.x; x < area.x + area.width; ++x) {
            words.push_back(
                localWord(buffer.base + static_cast<u32>(y) * buffer.width + static_cast<u32>(x)));
        }
    }
}

/// Computes the checksums of each command.
class Summing : public Visitor {
  public:
    void before(const Command& command) override {
        target = targetOf(command);
        area = command.isPrimitive() ? touchedArea(command) : transferArea(command);
    }

    bool after(const Command& command) final {
        CommandSums sums;
        std::vector<u32> words = {static_cast<u32>(command.kind), command.address,
                                  static_cast<u32>(command.value), static_cast<u32>(command.value >> 32)};
        sums.command = sumOf(words) ^ checksumOf(command.data);
        if (command.draws()) {
            sums.command ^= checksumOf(bytesOfElements(describe(command)));
            words.clear();
            addArea(words, target, area);
            if (command.isPrimitive() && Gs.test().zte == 1) {
                addArea(words, {Gs.zbuf().zbp, target.width}, area);
            }
            sums.pixels = sumOf(words);
        } else if (command.kind == CommandKind::VerticalBlank) {
            sums.pixels = checksumOf({Gs.vRam.begin(), Gs.vRam.end()});
        }
        return take(command, sums);
    }

    virtual bool take(const Command& command, const CommandSums& sums) = 0;

  private:
    PixelBuffer target;
    Rectangle area;
};

class Collecting : public Summing {
  public:
    bool take(const Command&, const CommandSums& sums) override {
        all.push_back(sums);
        return true;
    }
    std::vector<CommandSums> all;
};

/// Compares with the collected checksums, until the pixels differ.
class Comparing : public Summing {
  public:
    explicit Comparing(const std::vector<CommandSums>& other) : expected(other) {}

    bool take(const Command& command, const CommandSums& sums) override {
        const std::size_t index = command.number - 1;
        ++count;
        if (index >= expected.size()) {
            note(command);
            return false;
        }
        if (sums.command != expected[index].command && !firstCommand) {
            note(command);
        }
        if (sums.pixels != expected[index].pixels) {
            firstPixels = command.number;
            memory.assign(Gs.vRamUL(), Gs.vRamUL() + localMemoryWords);
        }
        return !firstPixels;
    }

    u64 count = 0;
    std::optional<u64> firstCommand;
    std::string commandLine;
    std::optional<u64> firstPixels;
    std::vector<u32> memory;  ///< after that command

  private:
    void note(const Command& command) {
        firstCommand = command.number;
        commandLine = listLine(command);
    }

    const std::vector<CommandSums>& expected;
};

/// Replays to a command, keeping the last lines of the list.
class Approach : public Visitor {
  public:
    Approach(std::optional<u64> mention, std::optional<u64> last) : wanted(mention), end(last) {}

    bool after(const Command& command) override {
        if (command.number == wanted) {
            noted = listLine(command);
        }
        if (command.number == end) {
            target = targetOf(command);
            line = listLine(command);
            return false;
        }
        return end || !wanted || command.number < *wanted;
    }

    std::string noted;
    std::string line;
    PixelBuffer target;

  private:
    std::optional<u64> wanted;
    std::optional<u64> end;
};

void printPixels(const std::vector<u32>& second, const PixelBuffer& buffer, std::FILE* output) {
    std::size_t count = 0;
    for (u32 i = 0; i < localMemoryWords; ++i) {
        const u32 index = (buffer.base + i) % localMemoryWords;
        const u32 a = localWord(index);
        const u32 b = second[index];
        if (a == b || count++ >= shownPixels) {
            continue;
        }
        const std::string place = buffer.width == 0 ? format("word 0x%x", index)
                                                    : format("(%u,%u)", i % buffer.width, i / buffer.width);
        std::fprintf(output, "    %s  #%08x  #%08x\n", place.c_str(), a, b);
    }
    std::fprintf(output, "    %zu %s of local memory differ\n", count, count == 1 ? "word" : "words");
}

}  // namespace

Comparison compareRecordings(Reader& first, Reader& second, std::FILE* output) {
    Collecting collected;
    {
        Player player(first);
        if (!player.error().empty()) {
            return {player.error(), false};
        }
        player.play(collected);
    }
    if (first.start().records != second.start().records ||
        !std::ranges::equal(first.start().localMemory, second.start().localMemory)) {
        std::fprintf(output, "they begin with different states of the GS\n");
    }
    Comparing compared(collected.all);
    {
        Player player(second);
        if (!player.error().empty()) {
            return {player.error(), false};
        }
        player.play(compared);
    }
    const bool shorter = !compared.firstPixels && compared.count < collected.all.size();
    if (!compared.firstCommand && !compared.firstPixels && !shorter) {
        std::fprintf(output, "%zu commands, no difference\n", collected.all.size());
        return {{}, true};
    }
    if (shorter && !compared.firstCommand) {
        compared.firstCommand = compared.count + 1;
        compared.commandLine = "(its end)";
    }
    first.rewind();
    Player player(first);
    Approach approach(compared.firstCommand, compared.firstPixels);
    player.play(approach);
    if (compared.firstCommand) {
        std::fprintf(output, "the first different command is %llu:\n  %s\n  %s\n", *compared.firstCommand,
                     approach.noted.empty() ? "(its end)" : approach.noted.c_str(),
                     compared.commandLine.c_str());
    }
    if (compared.firstPixels) {
        std::fprintf(output, "the pixels differ first after command %llu:\n  %s\n", *compared.firstPixels,
                     approach.line.c_str());
        printPixels(compared.memory, approach.target, output);
    }
    return {{}, false};
}

}  // namespace tarn::recording
