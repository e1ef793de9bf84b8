// What single steps changed, and who wrote to an address.
#include "history/report.h"

#include "base/diagnostics.h"
#include "history/memory_access.h"
#include "kernel/syscall_table.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "machine/settings.h"
#include "r5900/fields.h"
#include "r5900/register_names.h"

#include <algorithm>
#include <cstring>

namespace tarn::history {
namespace {

constexpr u64 longestReport = 100'000;  ///< steps

template <typename... Values>
std::string format(const char* form, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, form, values...);
    return text;
}

/// The trace lines of a step, one behind the other.
std::string traceOfStep;

void addTraceLine(const char* text) {
    std::string_view line = text;
    while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) {
        line.remove_suffix(1);
    }
    // The line that closes a step repeats the one before.
    if (traceOfStep.ends_with(line)) {
        return;
    }
    traceOfStep += traceOfStep.empty() ? "" : " | ";
    traceOfStep += line;
}

/// Traces into traceOfStep, and nowhere else, while it lives.
class TracedQuietly {
  public:
    TracedQuietly() {
        diagnosticSinks.text[static_cast<std::size_t>(Channel::Opcodes)] = addTraceLine;
        Settings.debug_op = 1;
    }
    ~TracedQuietly() { Settings.debug_op = former; }
    TracedQuietly(const TracedQuietly&) = delete;
    TracedQuietly& operator=(const TracedQuietly&) = delete;

  private:
    MutedDiagnostics muted;
    u8 former = Settings.debug_op;
};

void makeOneStep() {
    const u64 before = machine.counters.driverSteps;
    runTo(before + 1);
}

std::string changesSince(const MipsCpuRecord& before) {
    std::string text;
    const auto add = [&text](const std::string& name, const GuestValue& old, const GuestValue& now) {
        if (old.high != now.high) {
            text += " " + name + format("=%llx:%16.16llx", now.high, now.low);
        } else if (old.low != now.low) {
            text += " " + name + format("=%llx", now.low);
        }
    };
    for (unsigned i = 0; i < 32; ++i) {
        add(debug_r5900_reg[i], before.GPR[i], MipsCpu.GPR[i]);
    }
    add("hi", before.HI, MipsCpu.HI);
    add("lo", before.LO, MipsCpu.LO);
    for (unsigned i = 0; i < 32; ++i) {
        if (std::memcmp(&before.FPR32[i], &MipsCpu.FPR32[i], sizeof(f32)) != 0) {
            text += format(" f%u=%g", i, static_cast<double>(MipsCpu.FPR32[i]));
        }
    }
    return text;
}

std::string storedBy(const MemoryAccess& access) {
    const u32 place = placeOf(access.address, Access::Store);
    if (MipsMemory == nullptr || u64{place} + access.length > mainMemorySize) {
        return format(" [%8.8x] stored", access.address);
    }
    std::string text = format(" [%8.8x]=", access.address);
    for (u32 i = access.length; i-- > 0;) {
        text += format("%2.2x", unsigned{MipsMemory[place + i]});
    }
    return text;
}

/// Bytes in main memory that are watched for a change by whatever means.
class WatchedBytes {
  public:
    WatchedBytes(u32 address, u32 bytes)
        : place(placeOf(address, Access::Store)), length(bytes),
          inMemory(MipsMemory != nullptr && u64{place} + length <= mainMemorySize) {
        note();
    }

    bool touchedBy(const MemoryAccess& access) const {
        const u64 first = placeOf(access.address, access.kind);
        return access.kind == Access::Store && first < u64{place} + length && place < first + access.length;
    }
    bool changed() const { return inMemory && std::memcmp(MipsMemory + place, before.data(), length) != 0; }
    void note() {
        if (inMemory) {
            before.assign(MipsMemory + place, MipsMemory + place + length);
        }
    }
    /// As a number, when it is short enough.
    std::string value() const {
        std::string text = length <= 16 ? "0x" : "";
        for (u32 i = length; inMemory && length <= 16 && i-- > 0;) {
            text += format("%2.2x", unsigned{MipsMemory[place + i]});
        }
        return inMemory && length <= 16 ? text : "(not shown)";
    }

  private:
    u32 place;
    u32 length;
    bool inMemory;
    std::vector<u8> before;
};

/// What made a step that stored without a store instruction.
std::string writerName(u32 word) {
    if (r5900::majorOpcode(word) == 0 && r5900::functionCode(word) == 12) {
        return std::string("the kernel call ") + debug_syscall[MipsCpu.GPR[REG_V1].low & 0xFF];
    }
    return "the DMA controller";
}

}  // namespace

std::string describePosition(const symbols::SymbolTable& symbols) {
    return format("step %llu, vertical blank %llu, PC 0x%8.8llx %s\n", machine.counters.driverSteps,
                  machine.counters.verticalBlanks, MipsCpu.PC, symbols.describe(MipsCpu.PC).c_str());
}

std::string describeSteps(Timeline& timeline, u64 count) {
    const u64 end = machine.counters.driverSteps;
    const u64 available = std::min({count, end - timeline.first(), longestReport});
    timeline.goTo(end - available);
    std::string text;
    {
        const TracedQuietly traced;
        while (machine.counters.driverSteps < end) {
            traceOfStep.clear();
            const MipsCpuRecord before = MipsCpu;
            const u64 step = machine.counters.driverSteps;
            const std::optional<MemoryAccess> access = nextMemoryAccess();
            makeOneStep();
            text += format("%llu  ", step) +
                    (traceOfStep.empty() ? format("%8.8llx", before.PC) : traceOfStep) + " " +
                    changesSince(before);
            text += access && access->kind == Access::Store ? storedBy(*access) : "";
            text += MipsCpu.pause != 0 ? " (paused)\n" : "\n";
        }
    }
    timeline.goTo(end);
    return text;
}

std::string describeLastWrite(Timeline& timeline, u32 address, u32 bytes,
                              const symbols::SymbolTable& symbols) {
    const u64 end = machine.counters.driverSteps;
    const std::optional<u64> found = timeline.searchBack([&](u64 limit) {
        WatchedBytes watched(address, bytes);
        std::optional<u64> last;
        while (machine.counters.driverSteps < limit) {
            const u64 step = machine.counters.driverSteps;
            const std::optional<MemoryAccess> access = nextMemoryAccess();
            const bool stores = access && watched.touchedBy(*access);
            makeOneStep();
            if (stores || watched.changed()) {
                last = step;
                watched.note();
            }
        }
        return last;
    });
    std::string text = format("0x%8.8x: no store from step %llu to %llu\n", address, timeline.first(), end);
    if (found) {
        timeline.goTo(*found);
        WatchedBytes watched(address, bytes);
        const std::string old = watched.value();
        const std::optional<MemoryAccess> access = nextMemoryAccess();
        const bool stores = access && watched.touchedBy(*access);
        const u64 pc = MipsCpu.PC;
        u32 word = 0;
        if (MipsMemory != nullptr && static_cast<u32>(pc) <= mainMemorySize - sizeof word) {
            std::memcpy(&word, MipsMemory + static_cast<u32>(pc), sizeof word);
        }
        const std::string writer = stores ? "" : ", by " + writerName(word);
        const MutedDiagnostics muted;
        makeOneStep();
        text = format("0x%8.8x: last store at step %llu, PC 0x%8.8llx", address, *found, pc) + " " +
               symbols.describe(pc) + writer + ": " + old + " -> " + watched.value() + "\n";
    }
    timeline.goTo(end);
    return text;
}

}  // namespace tarn::history
