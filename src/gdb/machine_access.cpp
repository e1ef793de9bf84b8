// The debugger's view of the machine: registers by number, memory without side effects.
#include "gdb/machine_access.h"

#include "base/device_codes.h"
#include "history/memory_access.h"
#include "machine/machine.h"
#include "r5900/fpu_registers.h"
#include "r5900/operation.h"

#include <bit>

namespace tarn::gdb {

using history::biosFirst;
using history::placeOf;
using history::wordOf;

namespace {

// Numbers of the coprocessor registers that the debugger uses.
constexpr unsigned fcrFir = 0;
constexpr unsigned fcrFcsr = 31;

constexpr bool isSpecialArea(u32 place) { return place - specialAreaFirst < specialAreaSize; }

/// The member of the CPU record for a register, or null if there is no single one.
u64* doublewordOf(unsigned number) {
    if (number < MipsCpu.GPR.size()) {
        return &MipsCpu.GPR[number].low;
    }
    switch (number) {
    case statusRegister:
        return &MipsCpu.CP0[cp0_register::Status][0];
    case loRegister:
        return &MipsCpu.LO.low;
    case hiRegister:
        return &MipsCpu.HI.low;
    case badvaddrRegister:
        return &MipsCpu.CP0[cp0_register::BadVAddr][0];
    case causeRegister:
        return &MipsCpu.CP0[cp0_register::Cause][0];
    case pcRegister:
        return &MipsCpu.PC;
    case fcsrRegister:
        return &MipsCpu.FCR[fcrFcsr];
    case firRegister:
        return &MipsCpu.FCR[fcrFir];
    default:
        return nullptr;
    }
}

/// The host address of a byte at a place, or null.
u8* hostByte(u32 place) {
    u8* area = nullptr;
    u32 offset = 0;
    if (place < mainMemorySize) {
        area = MipsMemory;
        offset = place;
    } else if (isSpecialArea(place)) {
        area = SpecialAreaMemory;
        offset = place - specialAreaFirst;
    } else if (place - biosFirst < biosMemorySize) {
        area = BiosMemory;
        offset = place - biosFirst;
    }
    return area == nullptr ? nullptr : area + offset;
}

std::string buildTargetDescription() {
    std::string xml =
        "<?xml version=\"1.0\"?>\n"
        "<!DOCTYPE target SYSTEM \"gdb-target.dtd\">\n"
        "<target>\n"
        "<architecture>mips:5900</architecture>\n"
        // Without it the debugger assumes a Linux program and single-steps by breakpoints of its own.
        "<osabi>none</osabi>\n";
    const auto openFeature = [&xml](const char* name) {
        xml += std::string("<feature name=\"org.gnu.gdb.mips.") + name + "\">\n";
    };
    const auto add = [&xml](const std::string& name, unsigned number, const char* more = "") {
        xml += "<reg name=\"" + name + "\" bitsize=\"" + std::to_string(registerSize(number) * 8) +
               "\" regnum=\"" + std::to_string(number) + "\"" + more + "/>\n";
    };
    const auto closeFeature = [&xml] { xml += "</feature>\n"; };

    openFeature("cpu");
    for (unsigned i = 0; i < 32; ++i) {
        add("r" + std::to_string(i), i);
    }
    add("lo", loRegister);
    add("hi", hiRegister);
    add("pc", pcRegister);
    closeFeature();

    openFeature("cp0");
    add("status", statusRegister);
    add("badvaddr", badvaddrRegister);
    add("cause", causeRegister);
    closeFeature();

    openFeature("fpu");
    for (unsigned i = 0; i < 32; ++i) {
        add("f" + std::to_string(i), firstFpuRegister + i, " type=\"ieee_single\"");
    }
    add("fcsr", fcsrRegister, " group=\"float\"");
    add("fir", firRegister, " group=\"float\"");
    closeFeature();

    xml += "</target>\n";
    return xml;
}

}  // namespace

u64 readRegister(unsigned number) {
    if (const u64* slot = doublewordOf(number)) {
        return registerSize(number) == 8 ? *slot : static_cast<u32>(*slot);
    }
    return std::bit_cast<u32>(MipsCpu.FPR32[number - firstFpuRegister]);
}

void writeRegister(unsigned number, u64 value) {
    if (number == 0 && r5900::keepsR0()) {
        return;
    }
    if (u64* slot = doublewordOf(number)) {
        *slot = registerSize(number) == 8 ? value : static_cast<u32>(value);
        return;
    }
    r5900::setFromImage(static_cast<u8>(number - firstFpuRegister), static_cast<u32>(value));
}

const std::string& targetDescription() {
    static const std::string description = buildTargetDescription();
    return description;
}

std::size_t readMemory(u32 address, std::span<u8> bytes) {
    std::size_t count = 0;
    for (u8& byte : bytes) {
        const u8* source = hostByte(placeOf(address + static_cast<u32>(count), Access::Load));
        if (source == nullptr) {
            break;
        }
        byte = *source;
        ++count;
    }
    return count;
}

bool writeMemory(u32 address, std::span<const u8> bytes) {
    const auto target = [address](std::size_t index) -> u8* {
        const u32 byte = address + static_cast<u32>(index);
        const u32 place = placeOf(byte, Access::Store);
        // Loads from here read the BIOS image, so the debugger would not see the stored value.
        const bool writable =
            (place - mainMemoryFirst < mainMemorySize - mainMemoryFirst || isSpecialArea(place)) &&
            !isBios(wordOf(byte));
        return writable ? hostByte(place) : nullptr;
    };
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (target(i) == nullptr) {
            return false;
        }
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        *target(i) = bytes[i];
    }
    return true;
}

}  // namespace tarn::gdb
