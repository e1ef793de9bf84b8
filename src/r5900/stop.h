// Stops of the complete processor, in place of exceptions.
#pragma once

#include "machine/machine.h"

#include <string>

namespace tarn::r5900 {

/// Returns the name of a place in the program for the line that a stop prints; empty if unknown.
inline std::string (*describePlace)(u32 address) = [](u32) { return std::string(); };

/// Pauses with PC on the instruction, and prints the reason in the EmuOutput pane.
[[gnu::cold]] void stopWith(Stop reason);

/// Why the last instruction stopped; None if it did not, or paused for another reason.
inline Stop stopReason() { return MipsCpu.stopCycle == MipsCpu.cycle ? MipsCpu.stop : Stop::None; }

/// The reason in words; null for None.
constexpr const char* textOf(Stop reason) {
    switch (reason) {
    case Stop::None:
        break;
    case Stop::NoInstruction:
        return "no such instruction";
    case Stop::NotSupported:
        return "instruction not supported";
    case Stop::IntegerOverflow:
        return "integer overflow";
    case Stop::Trap:
        return "trap taken";
    case Stop::Break:
        return "breakpoint instruction";
    case Stop::UnalignedAddress:
        return "unaligned address";
    }
    return nullptr;
}

}  // namespace tarn::r5900
