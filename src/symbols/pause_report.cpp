// The report on a paused CPU: the place in the program, the calls, and the reason.
#include "symbols/pause_report.h"

#include "base/device_codes.h"
#include "kernel/syscall_table.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/failed_access.h"
#include "memory/main_memory.h"
#include "r5900/fields.h"
#include "r5900/operation.h"
#include "r5900/stop.h"
#include "symbols/call_chain.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn::symbols {
namespace {

template <typename... Values>
std::string format(const char* form, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, form, values...);
    return text;
}

bool isCurrentInstruction(u32 address) {
    return MipsMemory != nullptr && address <= mainMemorySize - sizeof MipsCpu.opcode &&
           std::memcmp(MipsMemory + address, &MipsCpu.opcode, sizeof MipsCpu.opcode) == 0;
}

// Advice.

struct Area {
    u32 first;
    u32 last;
    const char* name;
    const char* takes;
};

constexpr std::array areas{
    Area{mainMemoryFirst, mainMemorySize - 2, "main memory", "any access"},
    Area{specialAreaFirst, specialAreaFirst + specialAreaSize - 2, "the device registers",
         "words and doublewords"},
    Area{gsAreaFirst, gsAreaLast, "the registers of the GS", "words and doublewords"},
    Area{0x1FC00000, 0x1FC00000 + biosMemorySize - 2, "the BIOS image", "loads of words and bytes"},
};

u32 distance(const Area& area, u32 address) {
    if (address < area.first) {
        return area.first - address;
    }
    return address > area.last ? address - area.last : 0;
}

/// The access that has paused the CPU, if any.
const FailedAccess* failedAccess() {
    return MipsCpu.pause != 0 && lastFailedAccess.cycle == MipsCpu.cycle ? &lastFailedAccess : nullptr;
}

std::string adviceForAccess(const FailedAccess& failed) {
    const u32 address = failed.address;
    const std::string access =
        format("the %s of %u byte%s at 0x%08x failed: ", failed.isStore ? "store" : "load", failed.bytes,
               failed.bytes == 1 ? "" : "s", address);
    const u32 physical = foldKernelSegment(address);
    const Area& nearest =
        *std::ranges::min_element(areas, {}, [&](const Area& area) { return distance(area, physical); });
    if (distance(nearest, physical) == 0) {
        return access + format("only %s work in %s, 0x%08x to 0x%08x", nearest.takes, nearest.name,
                               nearest.first, nearest.last);
    }
    return access + format("nothing is there%s; the nearest is %s, 0x%08x to 0x%08x",
                           physical < 0x1000 ? ", a null pointer" : "", nearest.name, nearest.first,
                           nearest.last);
}

bool pausedOnCall() {
    constexpr u32 syscall = 0x0C;
    return r5900::majorOpcode(MipsCpu.opcode) == 0 && r5900::functionCode(MipsCpu.opcode) == syscall;
}

u8 callNumber() { return static_cast<u8>(MipsCpu.GPR[REG_V1].low); }

u32 argument(unsigned index) { return static_cast<u32>(MipsCpu.GPR[REG_A0 + index].low); }

std::string adviceForCall() {
    if (const std::optional<s32> result = exitResult()) {
        return format("the program has ended, with result %d", *result);
    }
    const u8 number = callNumber();
    const std::string_view name = debug_syscall[number];
    constexpr std::string_view prefix = "SYSCALL_";
    return format("the kernel call 0x%02x, %s, is not there (arguments 0x%x, 0x%x, 0x%x, 0x%x)", number,
                  name == "SYSCALL_NI" ? "which has no name" : name.substr(prefix.size()).data(), argument(0),
                  argument(1), argument(2), argument(3));
}

/// Whether the instruction is the trap or BREAK with code 7 that compilers emit for a divisor of 0.
bool checksDivisor(u32 word) {
    constexpr u32 trapIfEqual = 0x34 | 7 << 6, breakpoint = 0x0D | 7 << 16;
    return (word & 0xFC00FFFF) == trapIfEqual || word == breakpoint;
}

}  // namespace

std::string pauseCause() {
    if (const FailedAccess* failed = failedAccess()) {
        return adviceForAccess(*failed);
    }
    if (static_cast<u32>(MipsCpu.PC) > mainMemorySize - 4) {
        return "there is no code outside main memory: a wrong function pointer or return address";
    }
    if (pausedOnCall()) {
        return adviceForCall();
    }
    const u32 word = MipsCpu.opcode;
    if (Settings.completeCpu != 1 && !r5900::isImplementedBy(false, word) &&
        r5900::isImplementedBy(true, word)) {
        return "the complete processor has this instruction: General:Complete_cpu = 1, or --complete-cpu";
    }
    return r5900::stopReason() != Stop::None && checksDivisor(word) ? "a division by zero" : "";
}

std::optional<u32> pausedInstruction() {
    if (const FailedAccess* failed = failedAccess()) {
        return failed->pc;
    }
    const auto pc = static_cast<u32>(MipsCpu.PC);
    return isCurrentInstruction(pc) ? std::optional(pc) : std::nullopt;
}

std::optional<s32> exitResult() {
    constexpr u8 exitNumber = 0x04;
    if (MipsCpu.pause == 0 || !pausedOnCall() || callNumber() != exitNumber) {
        return std::nullopt;
    }
    return static_cast<s32>(argument(0));
}

std::vector<std::string> pauseReport(const SymbolTable& table) {
    std::vector<std::string> lines;
    const std::optional<u32> address = pausedInstruction();
    const u32 place = address.value_or(static_cast<u32>(MipsCpu.PC));
    if (const std::string text = table.describe(place); !text.empty()) {
        lines.push_back((address ? "in " : "on its way to ") + text);
    }
    if (MipsMemory != nullptr) {
        for (const u32 site :
             callersOf(table, MipsMemory, place, MipsCpu.GPR[REG_SP].low, MipsCpu.GPR[REG_RA].low)) {
            lines.push_back("called from " + table.describe(site));
        }
    }
    if (const std::string text = pauseCause(); !text.empty()) {
        lines.push_back(text);
    }
    return lines;
}

}  // namespace tarn::symbols
