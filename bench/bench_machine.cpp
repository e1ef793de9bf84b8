// The machine as the benchmarks use it.
#include "bench_machine.h"

#include "gs/gs.h"
#include "guest_loops.h"
#include "gui/screen.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/allocation.h"
#include "shell/driver.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarn::bench {

void startMachine() {
    reset(machine);
    Settings = {};
    Driver = {};
    FreeAllMemory();
    GSreset();
    Ps2Bios.vsyncCountdown = vsyncPeriod;
    const bool allocated = MipsMemoryAlloc() != 0 && MipsSpecialAreaMemoryAlloc() != 0 &&
                           MipsGSAreaMemoryAlloc() != 0 && MipsBiosMemoryAlloc() != 0 && GSinit() == 0;
    if (!allocated) {
        std::fprintf(stderr, "tarn-bench: no memory for the machine\n");
        std::exit(1);
    }
}

void loadGuest(std::span<const u32> program) {
    std::memcpy(MipsMemory + guestCodeAddress, program.data(), program.size_bytes());
    MipsCpu.PC = guestCodeAddress;
}

}  // namespace tarn::bench
