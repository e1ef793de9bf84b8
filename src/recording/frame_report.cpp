// The HTML page that shows a frame of a recording.
//
// Its data are two streams, compressed in a format that browsers can decompress. One is the list of commands
// as JSON. The other has the picture before the frame, one word per pixel, and then for each command that
// draws: the rectangle that it can reach, the outcome of each pixel there, as runs, and the new word of each
// written pixel. From these the page has all pictures, and the history of every pixel.
#include "recording/frame_report.h"

#include "base/object_bytes.h"
#include "gs/local_memory.h"
#include "machine/machine.h"
#include "recording/deflated.h"
#include "recording/description.h"
#include "recording/outcomes.h"
#include "recording/player.h"
#include "recording/report_page.h"
#include "recording/text.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace tarn::recording {
namespace {

constexpr std::size_t largestPictures = 3 << 20;  ///< bytes, compressed
constexpr std::size_t mostPixels = 64 << 20;      ///< whose outcomes are kept
constexpr u64 mostCommands = 20'000;

/// The part of a frame buffer that the page shows.
struct Canvas {
    PixelBuffer buffer;
    u32 width = 0;
    u32 height = 0;

    u32 word(u32 x, u32 y) const { return buffer.base + y * buffer.width + x; }
    Rectangle cut(const Rectangle& area) const {
        const s32 left = std::max(area.x, 0);
        const s32 top = std::max(area.y, 0);
        return {left, top, std::min(area.x + area.width, static_cast<s32>(width)) - left,
                std::min(area.y + area.height, static_cast<s32>(height)) - top};
    }
    std::vector<u32> pixels() const {
        std::vector<u32> words;
        for (u32 y = 0; y < height; ++y) {
            for (u32 x = 0; x < width; ++x) {
                words.push_back(localWord(word(x, y)));
            }
        }
        return words;
    }
};

/// Finds the frame to show, and the frame buffer in it to which most primitives are drawn.
class FrameChoice : public Visitor {
  public:
    explicit FrameChoice(std::optional<u64> asked) : wanted(asked) {}

    void before(const Command& command) override {
        if (!command.isPrimitive() || (wanted && command.frame != *wanted)) {
            return;
        }
        if (command.frame != frame) {
            frame = command.frame;
            uses.clear();
        }
        const PixelBuffer buffer = targetOf(command);
        const Rectangle area = touchedArea(command);
        Use& use = uses[{buffer.base, buffer.width}];
        ++use.primitives;
        use.right = std::max(use.right, area.x + area.width);
        use.bottom = std::max(use.bottom, area.y + area.height);
        if (Gs.gsdspfb().fbp == buffer.base) {
            use.right = std::max(use.right, static_cast<s32>(Gs.gsmode().width));
            use.bottom = std::max(use.bottom, static_cast<s32>(Gs.gsmode().height));
        }
    }

    bool after(const Command& command) override { return !wanted || command.frame <= *wanted; }

    std::optional<Canvas> canvas() const {
        const auto most = std::ranges::max_element(
            uses, [](const auto& a, const auto& b) { return a.second.primitives < b.second.primitives; });
        if (most == uses.end()) {
            return std::nullopt;
        }
        const auto& [base, width] = most->first;
        constexpr s32 mostRows = 1024;
        return Canvas{{base, width},
                      static_cast<u32>(std::clamp(most->second.right, 0, static_cast<s32>(width))),
                      static_cast<u32>(std::clamp(most->second.bottom, 0, mostRows))};
    }

    u64 frame = 0;

  private:
    struct Use {
        u64 primitives = 0;
        s32 right = 0;
        s32 bottom = 0;
    };
    std::optional<u64> wanted;
    std::map<std::tuple<u32, u32>, Use> uses;
};

class Collector : public Visitor {
  public:
    Collector(const Canvas& shown, u64 number) : canvas(shown), frame(number) {}

    void before(const Command& command) override {
        if (command.frame != frame || !takesPictures) {
            return;
        }
        begin();
        direct = targetOf(command) == canvas.buffer;
        if (direct) {
            probe.before(command);
        } else {
            former = canvas.pixels();
        }
    }

    bool after(const Command& command) override {
        if (command.frame < frame) {
            return true;
        }
        begin();
        if (command.frame > frame || listed == mostCommands) {
            left += command.frame == frame && isListed(command) ? 1 : 0;
            return command.frame == frame;
        }
        if (!isListed(command)) {
            return true;
        }
        const bool pictured = command.draws() && takesPictures;
        if (pictured) {
            addPicture(command);
        } else if (takesPictures) {
            addRectangle({});
        }
        withPictures += takesPictures ? 1 : 0;
        addText(command);
        ++listed;
        if (pictures.size() > largestPictures || pixels > mostPixels) {
            takesPictures = false;
        }
        return true;
    }

    /// The commands as a JSON array.
    std::string texts() {
        commands.add(listed == 0 ? "[]" : "]");
        return commands.finish();
    }
    std::string finishPictures() {
        begin();
        return pictures.finish();
    }

    u64 listed = 0;
    u64 withPictures = 0;
    u64 left = 0;  ///< number of commands that are not listed

  private:
    static bool isListed(const Command& command) {
        return command.kind != CommandKind::Register && command.kind != CommandKind::Field;
    }

    /// Adds the picture before the frame.
    void begin() {
        if (!begun) {
            begun = true;
            const std::vector<u32> words = canvas.pixels();
            pictures.add(bytesOfElements(words));
        }
    }

    void addRectangle(const Rectangle& area) {
        bytes.clear();
        ByteWriter writer(bytes);
        for (const s32 number : {area.x, area.y, area.width, area.height}) {
            writer.number(static_cast<u32>(number));
        }
        pictures.add(bytes);
    }

    void addPicture(const Command& command) {
        Rectangle area = canvas.cut(direct ? probe.reach() : changedArea());
        if (area.width <= 0 || area.height <= 0) {
            return addRectangle({});
        }
        const std::vector<Outcome> outcomes =
            direct
                ? probe.outcomes(command, area)
                : std::vector<Outcome>(static_cast<std::size_t>(area.width * area.height), Outcome::Written);
        pixels += outcomes.size();
        addRectangle(area);
        bytes.clear();
        ByteWriter writer(bytes);
        for (std::size_t i = 0; i < outcomes.size();) {
            std::size_t end = i;
            while (end < outcomes.size() && outcomes[end] == outcomes[i]) {
                ++end;
            }
            writer.value(static_cast<u8>(outcomes[i]));
            writer.number(end - i);
            i = end;
        }
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
            if (outcomes[i] == Outcome::Written) {
                const auto columns = static_cast<std::size_t>(area.width);
                writer.value(
                    localWord(canvas.word(static_cast<u32>(area.x) + static_cast<u32>(i % columns),
                                          static_cast<u32>(area.y) + static_cast<u32>(i / columns))));
            }
        }
        pictures.add(bytes);
    }

    /// The bounding rectangle of the changed pixels of the canvas.
    Rectangle changedArea() const {
        s32 left_ = static_cast<s32>(canvas.width);
        s32 top = static_cast<s32>(canvas.height);
        s32 right = 0;
        s32 bottom = 0;
        std::size_t i = 0;
        for (s32 y = 0; y < static_cast<s32>(canvas.height); ++y) {
            for (s32 x = 0; x < static_cast<s32>(canvas.width); ++x, ++i) {
                if (localWord(canvas.word(static_cast<u32>(x), static_cast<u32>(y))) != former[i]) {
                    left_ = std::min(left_, x);
                    top = std::min(top, y);
                    right = std::max(right, x + 1);
                    bottom = std::max(bottom, y + 1);
                }
            }
        }
        return {left_, top, right - left_, bottom - top};
    }

    /// n number, k kind, t text, w where, s state, v vertices if they are on the canvas.
    void addText(const Command& command) {
        std::string text = listed == 0 ? "[" : ",";
        text += format("{\"n\":%llu,\"step\":%llu,\"k\":", command.number, command.step) +
                quoted(command.kindName()) + ",\"t\":" + quoted(describe(command)) +
                ",\"w\":" + quoted(describePlace(command)) + ",\"s\":[";
        const std::string state = fullState(command);
        for (std::size_t i = 0; i < state.size();) {
            const std::size_t end = state.find('\n', i);
            text += (i == 0 ? "" : ",") + quoted(std::string_view(state).substr(i + 4, end - i - 4));
            i = end + 1;
        }
        text += "]";
        if (command.isPrimitive() && targetOf(command) == canvas.buffer) {
            text += ",\"v\":[";
            for (u32 i = 0; i < command.vertexCount; ++i) {
                text += format("%s[%d,%d]", i == 0 ? "" : ",",
                               command.vertices[i].x - static_cast<s32>(Gs.xyoffset().ofx),
                               command.vertices[i].y - static_cast<s32>(Gs.xyoffset().ofy));
            }
            text += "]";
        }
        commands.add(text + "}");
    }

    const Canvas& canvas;
    u64 frame;
    Deflated commands;
    Deflated pictures;
    OutcomeProbe probe;
    std::vector<u32> former;
    std::vector<u8> bytes;
    std::size_t pixels = 0;
    bool begun = false;
    bool direct = false;  ///< the command's target is what is shown
    bool takesPictures = true;
};

}  // namespace

std::string writeReport(Reader& recording, std::optional<u64> frame, std::FILE* output) {
    FrameChoice choice(frame);
    {
        Player player(recording);
        if (!player.error().empty()) {
            return player.error();
        }
        player.play(choice);
    }
    const std::optional<Canvas> canvas = choice.canvas();
    if (!canvas || canvas->width == 0 || canvas->height == 0) {
        return frame ? "no primitive is drawn in frame " + std::to_string(*frame) : "no primitive is drawn";
    }
    recording.rewind();
    Collector collector(*canvas, choice.frame);
    {
        Player player(recording);
        player.play(collector);
    }
    const std::string about =
        format("{\"frame\":%llu,\"width\":%u,\"height\":%u,\"base\":%u,\"pitch\":%u,"
               "\"listed\":%llu,\"pictured\":%llu,\"left\":%llu,\"program\":",
               choice.frame, canvas->width, canvas->height, canvas->buffer.base, canvas->buffer.width,
               collector.listed, collector.withPictures, collector.left) +
        quoted(recording.start().program) + "}";
    writeReportPage({about, collector.texts(), collector.finishPictures()}, output);
    return {};
}

}  // namespace tarn::recording
