// The positions of the panes: fixed, or side by side in a window that fits them.
#include "shell/pane_layout.h"

#include "gui/screen.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr u32 gap = 10;  ///< around and between the panes

// Sizes of the panes. As everywhere, a frame is one pixel larger than its width and height say.
constexpr u32 messagesWidth = 500;
constexpr u32 textHeight = 170;
constexpr u32 opcodesWidth = 250;
constexpr u32 registersWidth = 180;
constexpr u32 registersHeight = 400;
constexpr u32 leastPictureWidth = 240;
constexpr u32 leastPictureHeight = textHeight;

/// The position of the next pane, or of the window's edge.
constexpr u32 after(u32 place, u32 size) { return place + size + 1 + gap; }

/// `wanted`, reduced to what a screen has left beside `rest`, but not below `least`.
u32 room(u32 wanted, u32 least, u32 screen, u32 rest) {
    const u32 left = screen > rest ? screen - rest : 0;
    return std::max(std::min(wanted, left), least);
}

PaneFrame frame(u32 x, u32 y, u32 w, u32 h) { return {static_cast<s32>(x), static_cast<s32>(y), w, h}; }

struct Picture {
    u32 width;  ///< of its pane
    u32 height;
    u32 screenWidth;
    u32 screenHeight;
};

/// Picture, opcodes and registers beside each other, the messages below the first two.
WindowLayout threeColumns(const Picture& picture) {
    const u32 others = after(after(after(gap, 0), opcodesWidth), registersWidth);
    const u32 width = room(picture.width, leastPictureWidth, picture.screenWidth, others);
    const u32 height =
        room(picture.height, leastPictureHeight, picture.screenHeight, after(after(gap, 0), textHeight));
    const u32 opcodes = after(gap, width);
    const u32 registers = after(opcodes, opcodesWidth);
    const u32 messages = after(gap, height);
    const u32 bottom = std::max(messages + textHeight, gap + registersHeight);
    WindowLayout layout{after(registers, registersWidth), after(bottom, 0), {}};
    layout.panes[videoOutputPane] = frame(gap, gap, width, height);
    layout.panes[emuOutputPane] = frame(gap, messages, opcodes + opcodesWidth - gap, bottom - messages);
    layout.panes[opcodesPane] = frame(opcodes, gap, opcodesWidth, height);
    layout.panes[cpuRegistersPane] = frame(registers, gap, registersWidth, bottom - gap);
    return layout;
}

/// The messages below the picture, the opcodes below the registers.
WindowLayout twoColumns(const Picture& picture) {
    const u32 width = std::max(
        room(picture.width, leastPictureWidth, picture.screenWidth, after(after(gap, 0), opcodesWidth)),
        messagesWidth);
    const u32 height =
        room(picture.height, leastPictureHeight, picture.screenHeight, after(after(gap, 0), textHeight));
    const u32 right = after(gap, width);
    const u32 messages = after(gap, height);
    const u32 opcodes = after(gap, registersHeight);
    const u32 bottom = std::max(messages, opcodes) + textHeight;
    WindowLayout layout{after(right, opcodesWidth), after(bottom, 0), {}};
    layout.panes[videoOutputPane] = frame(gap, gap, width, height);
    layout.panes[emuOutputPane] = frame(gap, messages, width, bottom - messages);
    layout.panes[opcodesPane] = frame(right, opcodes, opcodesWidth, bottom - opcodes);
    layout.panes[cpuRegistersPane] = frame(right, gap, opcodesWidth, registersHeight);
    return layout;
}

}  // namespace

WindowLayout fixedLayout(u32 pictureWidth, u32 pictureHeight) {
    const u32 below = pictureHeight + 42;
    WindowLayout layout{800, 600, {}};
    layout.panes[videoOutputPane] = frame(10, 10, pictureWidth + 2, pictureHeight + titleBarHeight);
    layout.panes[emuOutputPane] = frame(10, below, 500, 170);
    layout.panes[opcodesPane] = frame(520, below, 250, 170);
    layout.panes[cpuRegistersPane] = frame(520, 10, 180, 400);
    return layout;
}

WindowLayout fittedLayout(u32 pictureWidth, u32 pictureHeight, u32 screenWidth, u32 screenHeight) {
    const Picture picture{std::max(pictureWidth + 2, leastPictureWidth),
                          std::max(pictureHeight + titleBarHeight, leastPictureHeight), screenWidth,
                          screenHeight};
    const auto isBetter = [&](const WindowLayout& one, const WindowLayout& other) {
        const auto shown = [&](const WindowLayout& layout) {
            const PaneFrame& pane = layout.panes[videoOutputPane];
            return u64{std::min(pane.w, picture.width)} * std::min(pane.h, picture.height);
        };
        const auto area = [](const WindowLayout& layout) { return u64{layout.width} * layout.height; };
        return shown(one) != shown(other) ? shown(one) > shown(other) : area(one) < area(other);
    };
    const WindowLayout wide = threeColumns(picture);
    const WindowLayout narrow = twoColumns(picture);
    return isBetter(narrow, wide) ? narrow : wide;
}

}  // namespace tarn
