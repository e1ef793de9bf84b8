// Pictures of the buffers that a command uses.
#pragma once

#include "recording/command.h"
#include "recording/recording_reader.h"

#include <string>
#include <vector>

namespace tarn::recording {

struct Picture {
    u32 width = 0;
    u32 height = 0;
    std::vector<u8> pixels;  ///< red, green, blue; rows from the top
};

enum class BufferKind : u8 { Frame, Depth, Texture };

/// How many rows of a frame buffer of the current context to show: those inside its scissor or on the
/// display, and at most those that local memory holds.
u32 shownRows();

/// The frame buffer of the current context, its depth buffer in greys from the smallest to the largest depth
/// in it, or its texture as a primitive of the command's kind uses it. Empty if there is none.
Picture pictureOf(const Command& command, BufferKind buffer);

/// The picture after the last command, or after command `at`. Returns an error message, or an empty string on
/// success.
std::string takePicture(Reader& recording, std::optional<u64> at, BufferKind buffer, Picture& picture);

}  // namespace tarn::recording
