// A command: something that happened to the GS, as seen when replaying a recording.
#pragma once

#include "machine/gs_state.h"
#include "recording/recording_format.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace tarn::recording {

enum class CommandKind : u8 {
    Point,
    Line,
    Triangle,
    Sprite,
    Reserved,  ///< a primitive of the reserved type, which draws nothing
    Upload,    ///< of pixels, from one transfer
    Move,      ///< within local memory
    Register,  ///< a write to a general register that does not belong to a vertex
    Display,   ///< a write to a privileged register
    Field,     ///< a read that flips the interlace field
    VerticalBlank,
};

/// By CommandKind, as in lists and on the command line.
inline constexpr std::array<std::string_view, 11> commandKindNames = {
    "point", "line",     "triangle", "sprite", "reserved", "upload",
    "move",  "register", "display",  "field",  "blank"};

struct Command {
    u64 number = 0;  ///< from 1
    u64 frame = 0;   ///< to which it belongs
    CommandKind kind = CommandKind::Reserved;
    u64 step = 0;
    const Place* place = nullptr;
    u32 address = 0;                     ///< of register accesses
    u64 value = 0;                       ///< of register writes
    std::array<GsVertex, 3> vertices{};  ///< of primitives, as queued: with the drawing offset
    u32 vertexCount = 0;
    std::span<const u8> data{};  ///< of uploads

    bool isPrimitive() const { return kind <= CommandKind::Reserved; }
    /// Whether the command can change local memory.
    bool draws() const { return kind <= CommandKind::Move; }
    std::string_view kindName() const { return commandKindNames[static_cast<std::size_t>(kind)]; }
};

/// A rectangle of pixels; empty when it has no columns or rows.
struct Rectangle {
    s32 x = 0;
    s32 y = 0;
    s32 width = 0;
    s32 height = 0;

    bool contains(s32 column, s32 row) const {
        return column >= x && column - x < width && row >= y && row - y < height;
    }
};

/// A buffer of pixels in local memory.
struct PixelBuffer {
    u32 base = 0;   ///< word index
    u32 width = 0;  ///< words a row

    friend bool operator==(const PixelBuffer&, const PixelBuffer&) = default;
};

// The following functions must be called before the command is executed.

/// Executes the command, possibly on a GS that has been modified.
void executeAgain(const Command& command);

/// The pixels of the frame and depth buffer that a primitive can change.
Rectangle touchedArea(const Command& command);

/// Sets the largest possible scissor in the current context. The frame buffer's size still limits drawing.
void openScissor();

/// The pixels that a primitive could change with the largest scissor, including those that it can change with
/// its own.
Rectangle reachableArea(const Command& command);

/// The buffer that a command draws to: a primitive's frame buffer, or the destination of an upload or a move.
PixelBuffer targetOf(const Command& command);

/// The part of its target that an upload or a move can change.
Rectangle transferArea(const Command& command);

}  // namespace tarn::recording
