// Accesses outside main memory: dispatch to the other areas, and messages about unmapped addresses.
#include "memory/memory.h"

#include "base/device_codes.h"
#include "base/diagnostics.h"
#include "machine/machine.h"
#include "memory/area_handlers.h"
#include "memory/failed_access.h"

#include <cstdio>

namespace tarn {
namespace {

constexpr bool isGsArea(u32 address) { return address - gsAreaFirst <= gsAreaLast - gsAreaFirst; }

/// Whether an access to main memory got here only because of its width code.
template <Access access>
bool isUnknownWidth(u32 address, Width width) {
    return bytesOf(width) == 0 && mainMemoryOffset<access>(address, 0) != notMainMemory;
}

/// After an access outside main memory: remembers it if it has paused the CPU.
void noteFailure(u32 address, Width width, bool isStore) {
    if (MipsCpu.pause != 0) {
        lastFailedAccess = {MipsCpu.cycle, static_cast<u32>(MipsCpu.PC), address, bytesOf(width), isStore};
    }
}

}  // namespace

void writeOutsideMainMemory(GuestValue value, Width width, u64 base, s32 offset) {
    const u32 address = guestAddress(base, offset);
    if (address - specialAreaFirst < specialAreaSize) {
        MipsSpecialMemWrite(SpecialAreaMemory, value, width, base, offset);
    } else if (isGsArea(address)) {
        MipsGSAreaMemWrite(GSAreaMemory, value, width, base, offset);
    } else {
        if (isUnknownWidth<Access::Store>(address, width)) {
            PrintToEmuOutput("Mem:Write DataType Not Handled\n");
        } else {
            PrintfToEmuOutput("Mem:Write:NEED SPECIAL HANDLE ADD :  %llx\n", u64{foldKernelSegment(address)});
        }
        MipsCpu.pause = 1;
    }
    noteFailure(address, width, true);
}

void readOutsideMainMemory(GuestValue* destination, Width width, u64 base, s32 offset) {
    const u32 address = guestAddress(base, offset);
    // The last byte of the special area can be written but not read.
    if (address - specialAreaFirst < specialAreaSize - 1) {
        MipsSpecialMemRead(SpecialAreaMemory, destination, width, base, offset);
    } else if (isGsArea(address)) {
        MipsGSAreaMemRead(GSAreaMemory, destination, width, base, offset);
    } else if (isBios(address)) {
        MipsBiosAreaMemRead(BiosMemory, destination, width, base, offset);
    } else {
        if (isUnknownWidth<Access::Load>(address, width)) {
            printDiagnostic("Mem:Read DataType Not Handled\n");
        } else {
            printDiagnostic("Mem:Read:NEED SPECIAL HANDLE ADD :  %llx\n", u64{foldKernelSegment(address)});
        }
        MipsCpu.pause = 1;
    }
    noteFailure(address, width, false);
}

}  // namespace tarn
