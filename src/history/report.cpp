// Reports on what steps changed, and on what wrote to an address.
#include "history/report.h"

#include "base/diagnostics.h"
#include "history/memory_access.h"
#include "history/stop_points.h"
#include "kernel/syscall_table.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "r5900/fields.h"
#include "r5900/step_text.h"

#include <algorithm>
#include <charconv>
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

/// Traces steps to a text only, while it exists.
class TracedQuietly {
  public:
    TracedQuietly() {
        diagnosticSinks.trace = &text;
        Settings.debug_op = 1;
    }
    ~TracedQuietly() { Settings.debug_op = former; }
    TracedQuietly(const TracedQuietly&) = delete;
    TracedQuietly& operator=(const TracedQuietly&) = delete;

    r5900::StepText text;

  private:
    MutedDiagnostics muted;
    u8 former = Settings.debug_op;
};

/// The bytes at a place; empty outside main memory and the special area.
std::span<const u8> bytesAt(u32 place, u32 length) {
    if (MipsMemory != nullptr && u64{place} + length <= mainMemorySize) {
        return {MipsMemory + place, length};
    }
    const u32 offset = place - specialAreaFirst;
    if (SpecialAreaMemory != nullptr && u64{offset} + length <= specialAreaSize) {
        return {SpecialAreaMemory + offset, length};
    }
    return {};
}

/// Watched bytes, and their values when last noted.
class WatchedBytes {
  public:
    WatchedBytes(u32 address, u32 bytes)
        : now(bytesAt(placeOf(address, Access::Store), bytes)), before(now.begin(), now.end()) {
        points.addWatchpoint({WatchKind::Write, address, bytes});
    }

    /// Stop points at stores to them.
    const StopPoints& stores() const { return points; }
    bool changed() const { return !std::equal(now.begin(), now.end(), before.begin()); }
    void note() { before.assign(now.begin(), now.end()); }

    /// The bytes as a number, if there are few enough.
    std::string value() const {
        if (now.empty() || now.size() > 16) {
            return "(not shown)";
        }
        std::string text = "0x";
        for (std::size_t i = now.size(); i-- > 0;) {
            text += format("%2.2x", unsigned{now[i]});
        }
        return text;
    }

  private:
    StopPoints points;
    std::span<const u8> now;
    std::vector<u8> before;
};

/// The last step before `end` that changes the bytes. Finds writes by the DMA controller and the kernel,
/// which are not stores.
std::optional<u64> lastChange(WatchedBytes& watched, u64 end) {
    std::optional<u64> last;
    const u64& now = machine.counters.driverSteps;
    while (now < end) {
        makeStep();
        if (watched.changed()) {
            last = now - 1;
            watched.note();
        }
    }
    return last;
}

/// The last step from the machine's position to `end` that stores to the bytes.
std::optional<u64> lastStore(Timeline& timeline, u32 address, u32 bytes, u64 end) {
    constexpr u64 stretch = 1 << 16;
    const u64& now = machine.counters.driverSteps;
    std::optional<u64> last;
    std::optional<std::pair<u64, u64>> silent;  ///< an interval after `last` in which the bytes changed
    WatchedBytes watched(address, bytes);
    {
        const ActiveStops active(watched.stores());
        while (now < end) {
            const u64 begin = now;
            runTo(std::min(end, begin + stretch));
            if (watched.changed()) {
                silent = {begin, now};
                watched.note();
            }
            if (now < end && watched.stores().stopHere()) {
                last = now;
                silent.reset();
                makeStep();
                watched.note();
            }
        }
    }
    if (silent) {
        timeline.goTo(silent->first);
        watched.note();
        last = lastChange(watched, silent->second);
    }
    return last;
}

/// What wrote in a step that is not a store.
std::string writerName(u32 word) {
    if (r5900::majorOpcode(word) == 0 && r5900::functionCode(word) == 12) {
        return std::string("the kernel call ") + debug_syscall[MipsCpu.GPR[REG_V1].low & 0xFF];
    }
    return "the DMA controller";
}

}  // namespace

std::optional<u32> addressNamed(std::string_view text, const symbols::SymbolTable& symbols) {
    const std::size_t plus = std::min(text.find('+'), text.size());
    const std::optional<u32> symbol = symbols.addressOf(text.substr(0, plus));
    std::string_view number = symbol ? text.substr(std::min(plus + 1, text.size())) : text;
    if (symbol && plus == text.size()) {
        return symbol;
    }
    if (number.starts_with("0x")) {
        number.remove_prefix(2);
    }
    u32 value = 0;
    const char* const last = number.data() + number.size();
    const auto [end, error] = std::from_chars(number.data(), last, value, 16);
    return error == std::errc() && end == last ? std::optional(symbol.value_or(0) + value) : std::nullopt;
}

std::string describePosition(const symbols::SymbolTable& symbols) {
    return format("step %llu, vertical blank %llu, PC 0x%8.8llx %s\n", machine.counters.driverSteps,
                  machine.counters.verticalBlanks, MipsCpu.PC, symbols.describe(MipsCpu.PC).c_str());
}

std::string describeSteps(Timeline& timeline, u64 count, const symbols::SymbolTable& symbols) {
    const u64 end = machine.counters.driverSteps;
    const u64 available = std::min({count, end - timeline.first(), longestReport});
    timeline.goTo(end - available);
    std::string text;
    {
        TracedQuietly traced;
        while (machine.counters.driverSteps < end) {
            const u64 pc = MipsCpu.PC;
            const std::string place = symbols.describe(pc);
            text += format("%llu  ", machine.counters.driverSteps) + place + (place.empty() ? "" : "  ");
            makeStep();
            // A failed fetch has no trace line.
            const std::string_view done = traced.text.finish();
            text += done.empty() ? format("%8.8llx (paused)", pc) : std::string(done);
            text += '\n';
        }
    }
    timeline.goTo(end);
    return text;
}

std::string describeLastWrite(Timeline& timeline, u32 address, u32 bytes,
                              const symbols::SymbolTable& symbols) {
    const u64 end = machine.counters.driverSteps;
    const std::optional<u64> found =
        timeline.searchBack([&](u64 limit) { return lastStore(timeline, address, bytes, limit); });
    std::string text = format("0x%8.8x: no store from step %llu to %llu\n", address, timeline.first(), end);
    if (found) {
        timeline.goTo(*found);
        WatchedBytes watched(address, bytes);
        const std::string old = watched.value();
        const u64 pc = MipsCpu.PC;
        u32 word = 0;
        if (MipsMemory != nullptr && static_cast<u32>(pc) <= mainMemorySize - sizeof word) {
            std::memcpy(&word, MipsMemory + static_cast<u32>(pc), sizeof word);
        }
        const std::string writer = watched.stores().stopHere() ? "" : ", by " + writerName(word);
        const MutedDiagnostics muted;
        makeStep();
        text = format("0x%8.8x: last store at step %llu, PC 0x%8.8llx", address, *found, pc) + " " +
               symbols.describe(pc) + writer + ": " + old + " -> " + watched.value() + "\n";
    }
    timeline.goTo(end);
    return text;
}

}  // namespace tarn::history
