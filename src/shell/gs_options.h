// The command line of tarn-gs.
#pragma once

#include "recording/buffer_picture.h"
#include "recording/list.h"
#include "recording/pixel_history.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn {

enum class GsCommand : u8 { Info, List, Picture, Pixel, Diff, Replay, Report };

struct GsOptions {
    GsCommand command = GsCommand::Info;
    std::vector<std::string> arguments;  ///< of the command
    recording::ListOptions list;
    recording::PixelQuestion pixel;
    std::optional<u64> at;  ///< default: the last command
    recording::BufferKind buffer = recording::BufferKind::Frame;
};

/// Parses the command line. Returns nothing and sets `status` after --help, --version, or an error message.
std::optional<GsOptions> parseGsOptions(int count, char** arguments, int& status);

}  // namespace tarn
