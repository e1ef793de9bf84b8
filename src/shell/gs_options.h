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
    std::vector<std::string> arguments;  ///< as many as the command takes
    recording::ListOptions list;
    recording::PixelQuestion pixel;
    std::optional<u64> at;  ///< the last command
    recording::BufferKind buffer = recording::BufferKind::Frame;
};

/// The command line, or nothing once `status` is known: after --help, --version, or a complaint on standard
/// error.
std::optional<GsOptions> parseGsOptions(int count, char** arguments, int& status);

}  // namespace tarn
