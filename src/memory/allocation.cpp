// Allocation and release of the four memory areas.
#include "base/buffer.h"

#include "base/diagnostics.h"
#include "machine/machine.h"
#include "memory/allocation.h"

namespace tarn {
namespace {

u8 allocate(Buffer& area, u32 size, const char* success, const char* failure) {
    const bool allocated = area.allocate(size);
    PrintToEmuOutput(allocated ? success : failure);
    return allocated ? 1 : 0;
}

}  // namespace

u8 MipsMemoryAlloc() {
    return allocate(MipsMemory, mainMemorySize, "R5900:Allocation Main Memory 32 Mbits...OK",
                    "R5900:Allocation Main Memory 32 Mbits...KO");
}

u8 MipsSpecialAreaMemoryAlloc() {
    return allocate(SpecialAreaMemory, specialAreaSize, "R5900:Allocation Special Memory 64 kbytes... OK",
                    "R5900:Allocation Special Memory 64 kbytes... KO");
}

u8 MipsGSAreaMemoryAlloc() {
    return allocate(GSAreaMemory, gsAreaSize, "RR5900:Allocation GS Register Memory 4288 bytes... OK",
                    "RR5900:Allocation GS Register Memory 4288 bytes... kO");
}

u8 MipsBiosMemoryAlloc() {
    return allocate(BiosMemory, biosMemorySize, "R5900:Allocation BIOS Memory 4 M bytes... OK ",
                    "R5900:Allocation BIOS Memory 4 M bytes... KO ");
}

void FreeAllMemory() {
    machine.memory = {};
    PrintToEmuOutput("FreeMemory: Main - SpecialArea - GS Register - Bios");
}

}  // namespace tarn
