// The outcome of each pixel that a command can reach.
#include "recording/outcomes.h"

#include "gs/local_memory.h"
#include "gs/pixel_writers.h"
#include "machine/machine.h"

#include <algorithm>

namespace tarn::recording {
namespace {

void turnOffAlphaTest() { Gs.test().ate = 0; }

void turnOffTests() {
    Gs.test().ate = 0;
    Gs.test().ztst = static_cast<u32>(DepthTest::Always);
}

/// The indexes of an area's pixels, row by row.
std::vector<u32> wordsOf(const PixelBuffer& buffer, const Rectangle& area) {
    std::vector<u32> words;
    for (s32 y = area.y; y < area.y + area.height; ++y) {
        for (s32 x = area.x; x < area.x + area.width; ++x) {
            words.push_back(buffer.base + static_cast<u32>(y) * buffer.width + static_cast<u32>(x));
        }
    }
    return words;
}

/// Whether the depth words of a primitive are among the pixels of an area.
bool depthIsAmong(const PixelBuffer& buffer, const Rectangle& area) {
    const u32 distance = Gs.zbuf().zbp - buffer.base;
    const u32 extent = buffer.width * static_cast<u32>(area.height + 1);
    return Gs.test().zte == 1 &&
           (distance % localMemoryWords < extent || -distance % localMemoryWords < extent);
}

}  // namespace

void OutcomeProbe::before(const Command& command) {
    buffer = targetOf(command);
    rectangle = command.isPrimitive() ? reachableArea(command) : transferArea(command);
    stretches = stretchesOf(command, rectangle);
    moment.take(stretches);
}

std::vector<Outcome> OutcomeProbe::outcomes(const Command& command, const Rectangle& area) {
    const std::vector<u32> words = wordsOf(buffer, area);
    std::vector<Outcome> result(words.size(), Outcome::NotReached);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (localWord(words[i]) != moment.word(words[i])) {
            result[i] = Outcome::Written;
        }
    }
    Moment now;
    now.take(stretches);
    // Words that were not saved cannot be reached.
    const auto isKept = [this](u32 word) {
        return std::ranges::any_of(stretches,
                                   [word](const Stretch& stretch) { return stretch.contains(word); });
    };
    // The pixels are complemented before the command is executed again: those that stay so are not written.
    const auto tryWith = [&](void (*change)(), Outcome outcome) {
        if (std::ranges::find(result, Outcome::NotReached) == result.end()) {
            return;
        }
        moment.restore();
        change();
        for (const u32 word : words) {
            if (isKept(word)) {
                localWord(word) = ~moment.word(word);
            }
        }
        executeAgain(command);
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (result[i] == Outcome::NotReached && isKept(words[i]) &&
                localWord(words[i]) != ~moment.word(words[i])) {
                result[i] = outcome;
            }
        }
    };
    moment.restore();
    if (command.isPrimitive() && depthIsAmong(buffer, area)) {
        now.restore();
        return result;
    }
    const bool testsAlpha = Gs.test().ate == 1;
    const bool testsDepth = Gs.test().zte == 1;
    tryWith([] {}, Outcome::Written);
    if (command.isPrimitive()) {
        if (testsAlpha) {
            tryWith(turnOffAlphaTest, Outcome::AlphaTest);
        }
        if (testsDepth) {
            tryWith(turnOffTests, Outcome::DepthTest);
        }
        tryWith(
            [] {
                turnOffTests();
                openScissor();
            },
            Outcome::Scissor);
    }
    now.restore();
    return result;
}

}  // namespace tarn::recording
