// Owns the allocation and the release of the four memory areas.
#include "base/allocation.h"

#include "gui/text_sinks.h"
#include "memory/areas.h"
#include "memory/memory.h"

#include <cstdlib>

namespace tarn {
namespace {

void release(u8*& area) {
    std::free(area);
    area = nullptr;
}

u8 allocate(u8*& area, u32 size, const char* success, const char* failure) {
    release(area);
    area = static_cast<u8*>(allocateBuffer(size));
    PrintToEmuOutput(area != nullptr ? success : failure);
    return area != nullptr ? 1 : 0;
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
    release(MipsMemory);
    release(SpecialAreaMemory);
    release(GSAreaMemory);
    release(BiosMemory);
    PrintToEmuOutput("FreeMemory: Main - SpecialArea - GS Register - Bios");
}

}  // namespace tarn
