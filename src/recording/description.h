// Commands in words.
#pragma once

#include "recording/command.h"

#include <string>

namespace tarn::recording {

// All are about the command that has just been executed, or is about to be.

/// What the command is, with its vertices and the state that matters to it.
std::string describe(const Command& command);

/// "drawSprites+0x44 (main.c:52) < main", as much as is known of where it was started.
std::string describePlace(const Command& command);

/// The command with its number, step and place in front: a line of a list.
std::string listLine(const Command& command);

/// Lines with every field of the registers that matter to the command, each behind four blanks.
std::string fullState(const Command& command);

/// The command as a JSON object; with `full`, with the fields of these registers.
std::string describeAsJson(const Command& command, bool full);

/// The bits of a pixel in a format (PSM); 0 for one that there is not.
constexpr u32 formatBits(u32 psm) {
    switch (psm) {
    case 0x00:
    case 0x30:
        return 32;
    case 0x01:
    case 0x31:
        return 24;
    case 0x02:
    case 0x0A:
    case 0x32:
    case 0x3A:
        return 16;
    case 0x13:
    case 0x1B:
        return 8;
    case 0x14:
    case 0x24:
    case 0x2C:
        return 4;
    default:
        return 0;
    }
}

/// That as a text, or the number of an unknown format.
std::string formatName(u32 psm);

}  // namespace tarn::recording
