// A summary of a recording.
#include "recording/info.h"

#include "gs/gs.h"
#include "gs/palette.h"
#include "machine/machine.h"
#include "recording/description.h"
#include "recording/ignored_features.h"
#include "recording/player.h"
#include "recording/text.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::recording {
namespace {

/// Counts pixels while it exists.
class CountedPixels {
  public:
    CountedPixels() { countPixels(true); }
    ~CountedPixels() { countPixels(false); }
    CountedPixels(const CountedPixels&) = delete;
    CountedPixels& operator=(const CountedPixels&) = delete;

    u64 count() const { return pixelsWritten - before; }

  private:
    u64 before = pixelsWritten;
};

using Texture = std::tuple<u32, u32, u32, u32, u32>;  // TBP0, TBW, PSM, width, height
using PaletteKey = std::tuple<u32, u32, u32>;         // CBP, CPSM, CSM

/// Prints the items that most primitives use, and how many others there are.
template <typename Key, typename Describe>
void printMostUsed(const std::map<Key, u64>& uses, std::FILE* output, Describe describeKey) {
    constexpr std::size_t shown = 12;
    std::vector<std::pair<Key, u64>> order(uses.begin(), uses.end());
    std::ranges::stable_sort(order, [](const auto& a, const auto& b) { return a.second > b.second; });
    for (std::size_t i = 0; i < std::min(order.size(), shown); ++i) {
        std::fprintf(output, "    %s: used %llu times\n", describeKey(order[i].first).c_str(),
                     order[i].second);
    }
    if (order.size() > shown) {
        std::fprintf(output, "    and %zu more\n", order.size() - shown);
    }
}

class Statistics : public Visitor {
  public:
    bool after(const Command& command) override {
        ++counts[static_cast<std::size_t>(command.kind)];
        lastStep = command.step;
        uploadedBytes += command.data.size();
        ignored.look(command);
        if (command.isPrimitive() && Gs.prim().tme == 1) {
            const GsTex0& t = Gs.tex0();
            ++textures[{t.tbp0, t.tbw, t.psm, t.tw, t.th}];
            if (isIndexed(t.psm)) {
                ++palettes[{t.cbp, t.cpsm, t.csm}];
            }
        }
        return true;
    }

    u64 count(CommandKind kind) const { return counts[static_cast<std::size_t>(kind)]; }

    u64 lastStep = 0;
    u64 uploadedBytes = 0;
    IgnoredFeatures ignored;
    std::map<Texture, u64> textures;
    std::map<PaletteKey, u64> palettes;

  private:
    std::array<u64, commandKindNames.size()> counts{};
};

}  // namespace

std::string printInfo(Reader& recording, std::FILE* output) {
    Player player(recording);
    if (!player.error().empty()) {
        return player.error();
    }
    Statistics statistics;
    const CountedPixels pixels;
    player.play(statistics);

    const Start& start = recording.start();
    const auto count = [&](CommandKind kind) { return statistics.count(kind); };
    const u64 blanks = count(CommandKind::VerticalBlank);
    std::fprintf(output, "program            %s\nrecorded by        %s\n", start.program.c_str(),
                 start.emulator.c_str());
    std::fprintf(output, "frames             %llu complete, from frame %llu on\n", blanks, start.frame);
    std::fprintf(output, "driver steps       %llu to %llu\n", start.step,
                 recording.end() ? recording.end()->step : statistics.lastStep);
    std::fprintf(output, "blending           %s\n", start.blends ? "on" : "off");
    std::fprintf(output, "transfers          %llu, of %llu quadwords\n", recording.transfers(),
                 recording.quadwords());
    std::fprintf(output, "commands           %llu\n", player.commandCount());
    std::fprintf(output, "primitives         %llu points, %llu lines, %llu triangles, %llu sprites\n",
                 count(CommandKind::Point), count(CommandKind::Line), count(CommandKind::Triangle),
                 count(CommandKind::Sprite));
    std::fprintf(output, "pixels written     %llu\n", pixels.count());
    std::fprintf(output, "uploads            %llu, of %llu bytes\n", count(CommandKind::Upload),
                 statistics.uploadedBytes);
    std::fprintf(output, "moves              %llu\n", count(CommandKind::Move));
    std::fprintf(output, "register writes    %llu, and %llu of the display\n", count(CommandKind::Register),
                 count(CommandKind::Display));
    std::fprintf(output, "textures           %zu\n", statistics.textures.size());
    printMostUsed(statistics.textures, output, [](const Texture& texture) {
        const auto& [base, width, psm, columns, rows] = texture;
        return format("%s bits at 0x%x/%u, %ux%u", formatName(psm).c_str(), base, width, columns, rows);
    });
    std::fprintf(output, "palettes           %zu\n", statistics.palettes.size());
    printMostUsed(statistics.palettes, output, [](const PaletteKey& palette) {
        const auto& [base, psm, mode] = palette;
        return format("%s bits at 0x%x, CSM %u", formatName(psm).c_str(), base, mode);
    });
    for (const std::string& warning : statistics.ignored.warnings()) {
        std::fprintf(output, "warning: %s\n", warning.c_str());
    }
    return {};
}

}  // namespace tarn::recording
