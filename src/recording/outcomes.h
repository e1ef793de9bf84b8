// The outcome of each pixel that a command can reach.
#pragma once

#include "recording/command.h"
#include "recording/moment.h"

#include <string_view>
#include <vector>

namespace tarn::recording {

enum class Outcome : u8 {
    NotReached,  ///< not a pixel of the command
    Written,
    DepthTest,  ///< would be written without the test
    AlphaTest,
    Scissor,  ///< or left out because clipping has moved the vertices
};

inline constexpr std::array<std::string_view, 5> outcomeNames = {"not reached", "written", "depth test",
                                                                 "alpha test", "scissor"};

/// Determines outcomes by executing a command again with different state, without support by the renderer.
class OutcomeProbe {
  public:
    /// Call it before the command is executed.
    void before(const Command& command);

    /// Call it after the command: the outcome of each pixel of `area` in the command's target, row by row.
    /// Does not change the GS.
    std::vector<Outcome> outcomes(const Command& command, const Rectangle& area);

    /// The GS before the command.
    const Moment& former() const { return moment; }

    /// The command's target, and the pixels that it can reach, for a primitive without a scissor.
    const PixelBuffer& target() const { return buffer; }
    const Rectangle& reach() const { return rectangle; }

  private:
    std::vector<Stretch> stretches;
    Moment moment;
    PixelBuffer buffer;
    Rectangle rectangle;
};

}  // namespace tarn::recording
