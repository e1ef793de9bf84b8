// Owns the debugger's view of the machine: registers by number, memory without side effects.
#include "gdb/machine.h"

#include "memory/areas.h"
#include "r5900/mips_cpu.h"

#include <algorithm>
#include <bit>

namespace tarn::gdb {

namespace {

// Numbers of the coprocessor registers that the debugger asks for.
constexpr unsigned cp0BadVAddr = 8;
constexpr unsigned cp0Status = 12;
constexpr unsigned cp0Cause = 13;
constexpr unsigned fcrFir = 0;
constexpr unsigned fcrFcsr = 31;

constexpr u32 specialAreaBase = 0x10000000;
constexpr u32 biosPlace = 0x1FC00000;
constexpr u32 biosMask = biosMemorySize - 1;
constexpr u32 mainMemoryMask = mainMemorySize - 1;
constexpr u32 unmappedBelow = 0x00100000;  ///< loads and stores do not reach the first megabyte

constexpr bool inRange(u32 address, u32 first, u32 last) { return address >= first && address <= last; }

constexpr bool isBios(u32 address) {
    return inRange(address, 0x1FC00000, 0x1FFFFFFF) || inRange(address, 0x9FC00000, 0x9FFFFFFF) ||
           inRange(address, 0xBFC00000, 0xBFFFFFFF);
}

constexpr bool isSpecialArea(u32 place) { return place - specialAreaBase < specialAreaSize; }

/// A register that is a whole slot of the CPU record, or null.
u64* doublewordOf(unsigned number) {
    if (number < MipsCpu.GPR.size()) {
        return &MipsCpu.GPR[number].low;
    }
    switch (number) {
    case statusRegister:
        return &MipsCpu.CP0[cp0Status][0];
    case loRegister:
        return &MipsCpu.LO.low;
    case hiRegister:
        return &MipsCpu.HI.low;
    case badvaddrRegister:
        return &MipsCpu.CP0[cp0BadVAddr][0];
    case causeRegister:
        return &MipsCpu.CP0[cp0Cause][0];
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

/// The host byte behind one byte of a place, or null where there is none.
u8* hostByte(u32 place) {
    if (place < mainMemorySize) {
        return MipsMemory == nullptr ? nullptr : MipsMemory + place;
    }
    if (isSpecialArea(place)) {
        return SpecialAreaMemory == nullptr ? nullptr : SpecialAreaMemory + (place - specialAreaBase);
    }
    if (inRange(place, biosPlace, biosPlace + biosMask)) {
        return BiosMemory == nullptr ? nullptr : BiosMemory + (place & biosMask);
    }
    return nullptr;
}

std::string buildTargetDescription() {
    std::string xml =
        "<?xml version=\"1.0\"?>\n"
        "<!DOCTYPE target SYSTEM \"gdb-target.dtd\">\n"
        "<target>\n"
        "<architecture>mips:5900</architecture>\n"
        // Without it the debugger takes the guest for a Linux program and steps by breakpoints of its own.
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
    if (u64* slot = doublewordOf(number)) {
        *slot = registerSize(number) == 8 ? value : static_cast<u32>(value);
        return;
    }
    const auto image = static_cast<u32>(value);
    MipsCpu.FPR128[number - firstFpuRegister].low = image;
    MipsCpu.FPR32[number - firstFpuRegister] = std::bit_cast<f32>(image);
}

const std::string& targetDescription() {
    static const std::string description = buildTargetDescription();
    return description;
}

u32 placeOf(u32 address, bool store) {
    // Only loads reach the BIOS; a store through the cached segment folds onto main memory instead.
    if (!store && isBios(address)) {
        return biosPlace | (address & biosMask);
    }
    u32 place = address;
    if (inRange(place, 0x80000000, 0x9FFFFFFE)) {
        place &= mainMemoryMask;
    }
    for (const u32 mirror : {0x00000000U, 0x20000000U, 0x30000000U}) {
        if (inRange(place, mirror + unmappedBelow, mirror + mainMemoryMask)) {
            return place & mainMemoryMask;
        }
    }
    return address;
}

std::size_t readMemory(u32 address, std::span<u8> bytes) {
    std::size_t count = 0;
    for (u8& byte : bytes) {
        const u8* source = hostByte(placeOf(address + static_cast<u32>(count), false));
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
        const u32 each = address + static_cast<u32>(index);
        const u32 place = placeOf(each, true);
        const bool writable = inRange(place, unmappedBelow, mainMemoryMask) || isSpecialArea(place);
        // What reads as BIOS at this address would not show the store.
        return writable && !isBios(each) ? hostByte(place) : nullptr;
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
