// Accesses to the special I/O area, the GS registers and the BIOS image.
#include "memory/area_handlers.h"

#include "base/device_codes.h"
#include "base/diagnostics.h"
#include "gs/gs_port.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/memory.h"

#include <cstdio>

namespace tarn {
namespace {

/// Whether an access of this width at offset `at` is inside an area of `size` bytes.
bool holds(const u8* area, u32 size, u32 at, Width width) {
    return area != nullptr && at + bytesOf(width) <= size;
}

void refuse(const char* message) {
    printDiagnostic("%s", message);
    MipsCpu.pause = 1;
}

}  // namespace

void MipsSpecialMemWrite(u8* area, GuestValue value, Width width, u64 base, s32 offset) {
    const u32 at = guestAddress(base, offset) & (specialAreaSize - 1);
    if (at == consoleTransmit && width == Width::Word && Settings.console == 1) {
        writeToConsole(static_cast<char>(value.low));
        return;
    }
    // The DMA controller sees every attempt, including one whose width is refused below.
    if (at >= dmaRegisterBase) {
        Ps2Bios.dmaWritePending = 1;
        Ps2Bios.dmaWriteOffset = at;
        Ps2Bios.dmaWriteValue = value.low;
        dmaWritePc = MipsCpu.PC;
    }
    if ((width == Width::Doubleword || width == Width::Word) && holds(area, specialAreaSize, at, width)) {
        writeWidth(area, at, value, width);
    } else {
        refuse("MemSpecial:Write DataType Not Handled\n");
    }
}

void MipsSpecialMemRead(const u8* area, GuestValue* destination, Width width, u64 base, s32 offset) {
    const u32 at = guestAddress(base, offset) & (specialAreaSize - 1);
    if ((width == Width::Doubleword || width == Width::Word) && holds(area, specialAreaSize, at, width)) {
        readWidth(destination, area, at, width);
    } else {
        refuse("MemSpecial:Read DataType Not Handled\n");
    }
    // A refused read is recorded too, with the old value of the destination.
    if (at >= dmaRegisterBase) {
        Ps2Bios.dmaReadPending = 1;
        Ps2Bios.dmaReadOffset = at;
        Ps2Bios.dmaReadValue = destination->low;
    }
}

void MipsGSAreaMemWrite(u8*, GuestValue value, Width width, u64 base, s32 offset) {
    const u32 address = guestAddress(base, offset);
    if (width == Width::Doubleword) {
        if (Settings.debug_gs == 1) {
            printDiagnostic("%8.8llx: GSwrite64 at %lx with %llx\n", MipsCpu.PC,
                            static_cast<unsigned long>(address), value.low);
        }
        gsPort.write64(address, value.low);
    } else if (width == Width::Word) {
        if (Settings.debug_gs == 1) {
            printDiagnostic("%8.8llx: GSwrite32 at %lx with %llx\n", MipsCpu.PC,
                            static_cast<unsigned long>(address), value.low);
        }
        gsPort.write32(address, static_cast<u32>(value.low));
    } else {
        refuse("MemGSArea:Write DataType Not Handled\n");
    }
}

void MipsGSAreaMemRead(const u8*, GuestValue* destination, Width width, u64 base, s32 offset) {
    // 32 bits of the address select the register; the trace shows all 64.
    const u64 address = base + static_cast<u64>(s64{offset});
    const auto trace = [&](const char* name) {
        if (Settings.debug_gs == 1) {
            printDiagnostic("%8.8llx: %s at %llx with %llx\n", MipsCpu.PC, name, address, destination->low);
        }
    };
    if (width == Width::Doubleword) {
        destination->low = gsPort.read64(static_cast<u32>(address));
        trace("GSread64");
    } else if (width == Width::Word) {
        destination->low = GSread32(static_cast<u32>(address));
        trace("GSread32");
    } else {
        refuse("MemGSArea:Read DataType Not Handled\n");
    }
}

void MipsBiosAreaMemRead(const u8* area, GuestValue* destination, Width width, u64 base, s32 offset) {
    const u32 at = guestAddress(base, offset) & (biosMemorySize - 1);
    if ((width == Width::Word || width == Width::Byte) && holds(area, biosMemorySize, at, width)) {
        readWidth(destination, area, at, width);
    } else {
        refuse("MemBIOS:Read DataType Not Handled\n");
    }
}

}  // namespace tarn
