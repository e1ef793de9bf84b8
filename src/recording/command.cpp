// What commands change.
#include "recording/command.h"

#include "gs/gs.h"
#include "gs/primitives.h"
#include "gs/transfer.h"

#include <algorithm>

namespace tarn::recording {
namespace {

Rectangle around(std::span<const GsVertex> vertices) {
    const auto byX = [](const GsVertex& a, const GsVertex& b) { return a.x < b.x; };
    const auto byY = [](const GsVertex& a, const GsVertex& b) { return a.y < b.y; };
    const auto [left, right] = std::ranges::minmax_element(vertices, byX);
    const auto [top, bottom] = std::ranges::minmax_element(vertices, byY);
    return {left->x, top->y, right->x - left->x + 1, bottom->y - top->y + 1};
}

}  // namespace

void executeAgain(const Command& command) {
    if (command.isPrimitive()) {
        primTable[Gs.prim().type](command.vertices.data());
    } else if (command.kind == CommandKind::Upload) {
        GSgifTransfer(command.data.data(), static_cast<u32>(command.data.size() / 16));
    } else if (command.kind == CommandKind::Move) {
        FBmoveImage();
    }
}

Rectangle touchedArea(const Command& command) {
    if (command.vertexCount == 0) {
        return {};
    }
    std::array<GsVertex, 3> vertices = command.vertices;
    for (GsVertex& vertex : vertices) {
        vertex.x -= static_cast<s32>(Gs.xyoffset().ofx);
        vertex.y -= static_cast<s32>(Gs.xyoffset().ofy);
        // Only vertices of textured surfaces can be below row 1023.
        if (Gs.prim().tme == 1 &&
            (command.kind == CommandKind::Triangle || command.kind == CommandKind::Sprite)) {
            clipVertexT(vertex);
        } else {
            clipVertex(vertex);
        }
    }
    return around(std::span(vertices).first(command.vertexCount));
}

void openScissor() {
    constexpr u32 last = 2047;
    Gs.scissor() = {.scax0 = 0, .scay0 = 0, .scax1 = last, .scay1 = last};
}

Rectangle reachableArea(const Command& command) {
    const Rectangle clipped = touchedArea(command);
    const GsScissor former = Gs.scissor();
    openScissor();
    const Rectangle open = touchedArea(command);
    Gs.scissor() = former;
    const s32 x = std::min(clipped.x, open.x);
    const s32 y = std::min(clipped.y, open.y);
    return {x, y, std::max(clipped.x + clipped.width, open.x + open.width) - x,
            std::max(clipped.y + clipped.height, open.y + open.height) - y};
}

PixelBuffer targetOf(const Command& command) {
    if (command.kind == CommandKind::Upload) {
        return {Gs.gifMode == GifMode::Image ? Gs.imagePtr : Gs.dstbuf.bp, Gs.dstbuf.bw};
    }
    if (command.kind == CommandKind::Move) {
        return {Gs.dstbuf.bp, Gs.dstbuf.bw};
    }
    return {Gs.gsfb().fbp, Gs.gsfb().fbw};
}

Rectangle transferArea(const Command& command) {
    const auto limited = [](u32 size) { return static_cast<s32>(std::min<u32>(size, localMemoryWords)); };
    Rectangle area{static_cast<s32>(Gs.trxpos.dsax), static_cast<s32>(Gs.trxpos.dsay), limited(Gs.imageW),
                   limited(Gs.imageH)};
    if (command.kind == CommandKind::Upload) {
        // As many rows from the cursor's on as the pixels fill. The cursor may be anywhere.
        const u64 pixels = Gs.dstbuf.psm == 1 ? command.data.size() / 3 : command.data.size() / 4;
        const u32 width = std::max(Gs.imageW, u32{1});
        const u64 rows = (static_cast<u32>(Gs.imageX) - Gs.trxpos.dsax + pixels + width - 1) / width;
        const s64 above = s64{Gs.imageY} - area.y;
        if (above >= 0 && above <= area.height && rows <= static_cast<u64>(area.height - above)) {
            area.y = Gs.imageY;
            area.height = static_cast<s32>(rows);
        }
    }
    return area;
}

}  // namespace tarn::recording
