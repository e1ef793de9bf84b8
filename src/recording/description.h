// Descriptions of commands.
#pragma once

#include "recording/command.h"

#include <string>

namespace tarn::recording {

// The command must have just been executed, or be about to be.

/// The command with its vertices and the state that it uses.
std::string describe(const Command& command);

/// Where the command was started, "drawSprites+0x44 (main.c:52) < main", as far as known.
std::string describePlace(const Command& command);

/// A line of a list: number, step, place, and the command.
std::string listLine(const Command& command);

/// Lines with all fields of the registers that the command uses, each indented by four spaces.
std::string fullState(const Command& command);

/// The command as a JSON object, with the fields of these registers if `full`.
std::string describeAsJson(const Command& command, bool full);

/// Bits per pixel of a format (PSM); 0 if there is no such format.
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

/// The name of a format, or the number of an unknown one.
std::string formatName(u32 psm);

}  // namespace tarn::recording
