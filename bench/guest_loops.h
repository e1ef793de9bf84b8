// The loops that interpreters are measured with. They use only instructions that mean the same on every MIPS,
// so that Tarn and a MIPS user-mode emulator run the same words.
#pragma once

#include "base/types.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace tarn::bench {

/// The addresses of a program and its data, in Tarn and elsewhere.
inline constexpr u32 guestCodeAddress = 0x00100000;
inline constexpr u32 guestDataAddress = 0x00108000;

/// A loop that counts t0 down to zero; `setup` runs once, with the address of the data in a0.
struct GuestLoop {
    std::string_view name;
    std::span<const u32> setup;
    std::span<const u32> body;
};

extern const std::array<GuestLoop, 3> guestLoops;

/// What follows the loop.
enum class Ending {
    Console,   ///< a write to an unknown DMA register, for which Tarn prints a line; then the start again
    LinuxO32,  ///< the exit call of 32-bit Linux
    LinuxN32,  ///< the exit call of Linux's N32 interface
};

/// The whole program: t0 = `iterations`, set-up, loop, ending.
std::vector<u32> guestProgram(const GuestLoop& loop, u32 iterations, Ending ending);

/// Writes the program as a static ELF file that starts at guestCodeAddress; false when that fails.
bool writeGuestElf(const char* path, std::span<const u32> program, Ending ending);

}  // namespace tarn::bench
