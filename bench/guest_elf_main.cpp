// tarn-bench-guest: writes a measured loop as an ELF file, for Tarn's programs and for MIPS user-mode
// emulators.
#include "guest_loops.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    using namespace tarn::bench;
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s alu|mixed|float console|o32|n32 ITERATIONS FILE\n", argv[0]);
        return 2;
    }
    const Ending ending = std::strcmp(argv[2], "console") == 0 ? Ending::Console
                          : std::strcmp(argv[2], "n32") == 0   ? Ending::LinuxN32
                                                               : Ending::LinuxO32;
    const auto iterations = static_cast<tarn::u32>(std::strtoul(argv[3], nullptr, 0));
    for (const GuestLoop& loop : guestLoops) {
        if (loop.name == argv[1]) {
            if (!writeGuestElf(argv[4], guestProgram(loop, iterations, ending), ending)) {
                std::perror(argv[4]);
                return 1;
            }
            return 0;
        }
    }
    std::fprintf(stderr, "%s: no such loop\n", argv[1]);
    return 2;
}
