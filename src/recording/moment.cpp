// Saving and restoring parts of the GS.
#include "recording/moment.h"

#include "gs/local_memory.h"
#include "machine/machine.h"

#include <algorithm>
#include <utility>

namespace tarn::recording {
namespace {

constexpr Stretch allOfMemory{0, localMemoryWords};

/// Copies the GS's state without local memory.
void copyRecords(GsState& to, const GsState& from) {
    Buffer memory = std::move(Gs.vRam);
    to = from;
    Gs.vRam = std::move(memory);
}

}  // namespace

std::vector<Stretch> stretchesOf(const Command& command, const Rectangle& area) {
    const PixelBuffer buffer = targetOf(command);
    if (!command.isPrimitive()) {
        return {allOfMemory};
    }
    // One pixel more at both ends, because a vertex may be clipped to column -1.
    const u64 count = u64{buffer.width} * static_cast<u32>(area.height) + 2;
    if (area.height <= 0 || count >= localMemoryWords) {
        return {allOfMemory};
    }
    const u32 offset = static_cast<u32>(area.y) * buffer.width - 1;
    return {{buffer.base + offset, static_cast<u32>(count)},
            {Gs.zbuf().zbp + offset, static_cast<u32>(count)}};
}

void Moment::take(std::span<const Stretch> stretches) {
    copyRecords(records, Gs);
    parts.resize(stretches.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        Part& part = parts[i];
        part.stretch = stretches[i];
        part.words.resize(part.stretch.count);
        forLocalRuns(part.stretch.first, part.stretch.count, [&](const u32* words, u32 first, u32 run) {
            std::copy_n(words, run, part.words.begin() + first);
        });
    }
}

void Moment::restore() const {
    copyRecords(Gs, records);
    for (const Part& part : parts) {
        forLocalRuns(part.stretch.first, part.stretch.count, [&](u32* words, u32 first, u32 run) {
            std::copy_n(part.words.begin() + first, run, words);
        });
    }
}

u32 Moment::word(u32 index) const {
    for (const Part& part : parts) {
        if (part.stretch.contains(index)) {
            return part.words[(index - part.stretch.first) % localMemoryWords];
        }
    }
    return localWord(index);
}

}  // namespace tarn::recording
