// The history of a pixel.
#include "recording/pixel_history.h"

#include "gs/local_memory.h"
#include "machine/machine.h"
#include "recording/description.h"
#include "recording/outcomes.h"
#include "recording/player.h"
#include "recording/text.h"

namespace tarn::recording {
namespace {

/// Finds the frame buffer of the last primitive.
class LastTarget : public Visitor {
  public:
    explicit LastTarget(const PixelQuestion& asked) : question(asked) {}

    bool after(const Command& command) override {
        if (question.lastCommand && command.number > *question.lastCommand) {
            return false;
        }
        if (command.isPrimitive()) {
            buffer = targetOf(command);
        }
        return true;
    }

    std::optional<PixelBuffer> buffer;

  private:
    const PixelQuestion& question;
};

class History : public Visitor {
  public:
    History(const PixelQuestion& asked, u32 wordIndex, std::FILE* stream)
        : question(asked), index(wordIndex), output(stream) {}

    void before(const Command& command) override {
        formerWord = localWord(index);
        depthIndex.reset();
        mayReach = false;
        const PixelBuffer buffer = targetOf(command);
        if (buffer.width == 0) {
            return;
        }
        const u32 offset = (index - buffer.base) % localMemoryWords;
        place = {static_cast<s32>(offset % buffer.width), static_cast<s32>(offset / buffer.width), 1, 1};
        const Rectangle area = command.isPrimitive() ? reachableArea(command) : transferArea(command);
        mayReach = area.contains(place.x, place.y);
        if (mayReach && command.isPrimitive() && Gs.test().zte == 1) {
            depthIndex = Gs.zbuf().zbp + offset;
            formerDepth = localWord(*depthIndex);
        }
        if (mayReach) {
            probe.before(command);
        }
    }

    bool after(const Command& command) override {
        if (question.lastCommand && command.number > *question.lastCommand) {
            return false;
        }
        if (command.draws() && (mayReach || localWord(index) != formerWord)) {
            print(command);
        }
        return true;
    }

  private:
    void print(const Command& command) {
        const Outcome outcome = mayReach ? probe.outcomes(command, place)[0] : Outcome::Written;
        std::string reason(outcomeNames[static_cast<std::size_t>(outcome)]);
        if (outcome == Outcome::Scissor) {
            const GsScissor& scissor = Gs.scissor();
            const auto x = static_cast<u32>(place.x);
            const auto y = static_cast<u32>(place.y);
            const bool inside =
                x >= scissor.scax0 && x <= scissor.scax1 && y >= scissor.scay0 && y <= scissor.scay1;
            reason = inside ? "clipped away" : "scissor";
        }
        std::string line = format("%7llu  %9llu  %-12s  #%08x -> #%08x", command.number, command.step,
                                  reason.c_str(), formerWord, localWord(index));
        if (depthIndex) {
            line += format("  depth %u -> %u", formerDepth, localWord(*depthIndex));
        }
        const std::string where = describePlace(command);
        std::fprintf(output, "%s  %s%s%s%s\n", line.c_str(), describe(command).c_str(),
                     where.empty() ? "" : "  [", where.c_str(), where.empty() ? "" : "]");
    }

    const PixelQuestion& question;
    u32 index;
    std::FILE* output;
    OutcomeProbe probe;
    Rectangle place;  ///< the pixel, in the command's own target
    bool mayReach = false;
    u32 formerWord = 0;
    std::optional<u32> depthIndex;
    u32 formerDepth = 0;
};

}  // namespace

std::string printPixelHistory(Reader& recording, const PixelQuestion& question, std::FILE* output) {
    LastTarget last(question);
    {
        Player player(recording);
        if (!player.error().empty()) {
            return player.error();
        }
        player.play(last);
    }
    if (!last.buffer) {
        return "no primitive is drawn up to there";
    }
    const PixelBuffer buffer = *last.buffer;
    if (question.x >= buffer.width || question.y >= maxRowsOf(buffer.width)) {
        return format("pixel (%u,%u) is outside the frame buffer, which is %u pixels wide", question.x,
                      question.y, buffer.width);
    }
    std::fprintf(output, "pixel (%u,%u) of the frame buffer at 0x%x, %u pixels wide; colours are #AABBGGRR\n",
                 question.x, question.y, buffer.base, buffer.width);
    recording.rewind();
    Player player(recording);
    History history(question, buffer.base + question.y * buffer.width + question.x, output);
    player.play(history);
    return {};
}

}  // namespace tarn::recording
