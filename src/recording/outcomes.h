// What becomes of each pixel that a command may reach, and why.
#pragma once

#include "recording/command.h"
#include "recording/moment.h"

#include <string_view>
#include <vector>

namespace tarn::recording {

enum class Outcome : u8 {
    NotReached,  ///< the command has no such pixel
    Written,
    DepthTest,  ///< it would be written but for this
    AlphaTest,
    Scissor,  ///< also where clipping has moved the vertices so that the pixel is left out
};

inline constexpr std::array<std::string_view, 5> outcomeNames = {"not reached", "written", "depth test",
                                                                 "alpha test", "scissor"};

/// Finds out by executing a command again with other settings; nothing in the renderer knows of it.
class OutcomeProbe {
  public:
    /// To be called before the command is executed.
    void before(const Command& command);

    /// To be called after that: the outcome of each pixel of `area` of the command's target, row by row. The
    /// GS stays as it is.
    std::vector<Outcome> outcomes(const Command& command, const Rectangle& area);

    /// The GS before the command.
    const Moment& former() const { return moment; }

    /// Where the command's pixels go, and the pixels that it may reach: those of a primitive as if there were
    /// no scissor.
    const PixelBuffer& target() const { return buffer; }
    const Rectangle& reach() const { return rectangle; }

  private:
    std::vector<Stretch> stretches;
    Moment moment;
    PixelBuffer buffer;
    Rectangle rectangle;
};

}  // namespace tarn::recording
