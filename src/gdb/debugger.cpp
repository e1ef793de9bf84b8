// The packets of the GDB remote serial protocol, and when the running machine stops for the debugger.
#include "gdb/debugger.h"

#include "gdb/machine_access.h"
#include "gdb/packet.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "r5900/fields.h"
#include "r5900/operation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace tarn::gdb {

namespace {

// Replies. The debugger ignores the numbers of errors; by convention they are errno values.
constexpr const char* ok = "OK";
constexpr const char* unknownPacket = "";
constexpr const char* badArguments = "E16";  // EINVAL
constexpr const char* noMemory = "E0e";      // EFAULT
constexpr const char* noRoom = "E1c";        // ENOSPC

// Signals, in the debugger's numbering, that stop replies name.
constexpr const char* stoppedByInterrupt = "S02";    // SIGINT
constexpr const char* stoppedByTrap = "S05";         // SIGTRAP
constexpr const char* stoppedByInstruction = "S04";  // SIGILL
constexpr const char* stoppedByMemory = "S0b";       // SIGSEGV
constexpr const char* stoppedBySystemCall = "S0c";   // SIGSYS

constexpr std::string_view monitorPacket = "qRcmd,";
constexpr std::size_t longestRead = maximumPacket / 2;

/// The signal for a paused CPU, depending on its last instruction.
const char* pauseReason() {
    if (static_cast<u32>(MipsCpu.PC) > mainMemorySize - sizeof(u32)) {
        return stoppedByMemory;  // nothing can be fetched there
    }
    const u32 major = r5900::majorOpcode(MipsCpu.opcode);
    if (major == 0) {
        switch (r5900::functionCode(MipsCpu.opcode)) {
        case 12:  // SYSCALL
            return stoppedBySystemCall;
        case 13:  // BREAK
            return stoppedByTrap;
        default:
            return stoppedByInstruction;
        }
    }
    return r5900::operationOf(MipsCpu.opcode).accessesMemory() ? stoppedByMemory : stoppedByInstruction;
}

std::array<u8, 8> littleEndian(u64 value) {
    std::array<u8, 8> bytes{};
    std::memcpy(bytes.data(), &value, bytes.size());
    return bytes;
}

std::string hexOf(std::string_view text) {
    return toHex({reinterpret_cast<const u8*>(text.data()), text.size()});
}

std::string registerDigits(unsigned number) {
    const std::array<u8, 8> bytes = littleEndian(readRegister(number));
    return toHex(std::span(bytes).first(registerSize(number)));
}

std::string readAllRegisters() {
    std::string digits;
    for (unsigned number = 0; number < registerCount; ++number) {
        digits += registerDigits(number);
    }
    return digits;
}

u64 registerValue(std::string_view bytes) {
    u64 value = 0;
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
}

std::string writeAllRegisters(std::string_view digits) {
    const std::optional<std::string> bytes = fromHex(digits);
    std::size_t expected = 0;
    for (unsigned number = 0; number < registerCount; ++number) {
        expected += registerSize(number);
    }
    if (!bytes || bytes->size() != expected) {
        return badArguments;
    }
    std::string_view rest = *bytes;
    for (unsigned number = 0; number < registerCount; ++number) {
        writeRegister(number, registerValue(rest.substr(0, registerSize(number))));
        rest.remove_prefix(registerSize(number));
    }
    return ok;
}

std::string readOneRegister(std::string_view arguments) {
    const std::optional<u64> number = takeHex(arguments);
    if (!number || !arguments.empty() || *number >= registerCount) {
        return badArguments;
    }
    return registerDigits(static_cast<unsigned>(*number));
}

std::string writeOneRegister(std::string_view arguments) {
    const std::optional<u64> number = takeHex(arguments);
    if (!number || *number >= registerCount || !takeCharacter(arguments, '=')) {
        return badArguments;
    }
    const auto index = static_cast<unsigned>(*number);
    const std::optional<std::string> bytes = fromHex(arguments);
    if (!bytes || bytes->size() != registerSize(index)) {
        return badArguments;
    }
    writeRegister(index, registerValue(*bytes));
    return ok;
}

/// An address and a length, "ADDRESS,LENGTH". Addresses come sign-extended or not: their low 32 bits count.
struct Range {
    u32 address = 0;
    u64 length = 0;
};

std::optional<Range> takeRange(std::string_view& text) {
    const std::optional<u64> address = takeHex(text);
    if (!address || !takeCharacter(text, ',')) {
        return std::nullopt;
    }
    const std::optional<u64> length = takeHex(text);
    if (!length) {
        return std::nullopt;
    }
    return Range{static_cast<u32>(*address), *length};
}

std::string readMemoryDigits(std::string_view arguments) {
    const std::optional<Range> range = takeRange(arguments);
    if (!range || !arguments.empty()) {
        return badArguments;
    }
    std::vector<u8> bytes(static_cast<std::size_t>(std::min<u64>(range->length, longestRead)));
    bytes.resize(readMemory(range->address, bytes));
    return bytes.empty() && range->length != 0 ? noMemory : toHex(bytes);
}

/// Writes memory from hexadecimal digits ('M') or raw bytes ('X').
std::string writeMemoryFrom(std::string_view arguments, bool hexadecimal) {
    const std::optional<Range> range = takeRange(arguments);
    if (!range || !takeCharacter(arguments, ':')) {
        return badArguments;
    }
    const std::optional<std::string> bytes = hexadecimal ? fromHex(arguments) : std::string(arguments);
    if (!bytes || bytes->size() != range->length) {
        return badArguments;
    }
    const auto* data = reinterpret_cast<const u8*>(bytes->data());
    return writeMemory(range->address, {data, bytes->size()}) ? ok : noMemory;
}

/// The part "OFFSET,LENGTH" of the target description, marked if it is the last.
std::string readTargetDescription(std::string_view arguments) {
    const std::optional<u64> offset = takeHex(arguments);
    if (!offset || !takeCharacter(arguments, ',')) {
        return badArguments;
    }
    const std::optional<u64> length = takeHex(arguments);
    if (!length || !arguments.empty()) {
        return badArguments;
    }
    const std::string_view text = targetDescription();
    if (*offset >= text.size()) {
        return "l";
    }
    const std::string_view part = text.substr(static_cast<std::size_t>(*offset),
                                              static_cast<std::size_t>(std::min<u64>(*length, longestRead)));
    return (*offset + part.size() < text.size() ? "m" : "l") + std::string(part);
}

std::string query(std::string_view packet) {
    constexpr std::string_view readFeatures = "qXfer:features:read:target.xml:";
    if (packet == "qSupported" || packet.starts_with("qSupported:")) {
        constexpr u16 size = maximumPacket;
        const std::array<u8, 2> digits = {static_cast<u8>(size >> 8), static_cast<u8>(size & 0xFF)};
        return "PacketSize=" + toHex(digits) + ";QStartNoAckMode+;qXfer:features:read+;vContSupported+";
    }
    if (packet.starts_with(readFeatures)) {
        return readTargetDescription(packet.substr(readFeatures.size()));
    }
    // One thread, which was there before the debugger.
    if (packet == "qAttached") {
        return "1";
    }
    if (packet == "qC") {
        return "QC1";
    }
    if (packet == "qfThreadInfo") {
        return "m1";
    }
    return packet == "qsThreadInfo" ? "l" : unknownPacket;
}

/// Sets or removes a breakpoint or watchpoint: "Z" or "z", then "TYPE,ADDRESS,LENGTH".
std::string changePoint(std::string_view packet, history::StopPoints& points) {
    const bool add = packet.front() == 'Z';
    packet.remove_prefix(1);
    const std::optional<u64> type = takeHex(packet);
    if (!type || !takeCharacter(packet, ',')) {
        return badArguments;
    }
    const std::optional<Range> range = takeRange(packet);
    if (!range) {
        return badArguments;
    }
    if (*type > 4) {
        return unknownPacket;
    }
    if (*type < 2) {  // software and hardware breakpoints are the same to an interpreter
        if (!add) {
            points.removeBreakpoint(range->address);
            return ok;
        }
        return points.addBreakpoint(range->address) ? ok : noRoom;
    }
    if (range->length == 0 || range->length > mainMemorySize) {
        return badArguments;
    }
    using history::WatchKind;
    constexpr std::array kinds = {WatchKind::Write, WatchKind::Read, WatchKind::Access};
    const history::Watchpoint watchpoint{kinds[*type - 2], range->address, static_cast<u32>(range->length)};
    if (!add) {
        points.removeWatchpoint(watchpoint);
        return ok;
    }
    return points.addWatchpoint(watchpoint) ? ok : noRoom;
}

}  // namespace

std::string watchReply(const history::WatchHit& hit) {
    const char* kind = hit.kind == history::WatchKind::Write  ? "watch"
                       : hit.kind == history::WatchKind::Read ? "rwatch"
                                                              : "awatch";
    const std::array<u8, 4> digits = {static_cast<u8>(hit.address >> 24), static_cast<u8>(hit.address >> 16),
                                      static_cast<u8>(hit.address >> 8), static_cast<u8>(hit.address)};
    return std::string("T05") + kind + ":" + toHex(digits) + ";";
}

void Debugger::attach() {
    attached = true;
    stops.reset();
    points.clear();
    stop(MipsCpu.pause != 0 ? pauseReason() : stoppedByTrap);
}

void Debugger::drop() {
    stops.reset();
    points.clear();
    attached = false;
}

void Debugger::runOn() {
    if (!attached) {
        resume(Mode::Running, {});
    }
}

std::optional<std::string> Debugger::stop(std::string reply) {
    current = Mode::Stopped;
    stops.reset();
    rangeFirst = rangeEnd = 0;
    lastStop = std::move(reply);
    return lastStop;
}

std::optional<std::string> Debugger::resume(Mode how, std::string_view address) {
    if (!address.empty()) {
        const std::optional<u64> pc = takeHex(address);
        if (!pc || !address.empty()) {
            return badArguments;
        }
        MipsCpu.PC = *pc;
        altered = true;
    }
    if (altered && timeline != nullptr) {
        timeline->begin();
    }
    altered = false;
    stepped = false;
    MipsCpu.pause = 0;  // try the instruction again
    current = how;
    if (how == Mode::Running && !points.empty()) {
        stops.emplace(points);
    }
    return std::nullopt;
}

std::optional<std::string> Debugger::resumeWithSignal(Mode how, std::string_view arguments) {
    // The guest has no signals: the number is checked and ignored.
    if (!takeHex(arguments)) {
        return badArguments;
    }
    takeCharacter(arguments, ';');
    return resume(how, arguments);
}

/// The first action of vCont; there is one thread.
std::optional<std::string> Debugger::resumeThreads(std::string_view actions) {
    if (actions.empty() || actions.front() != ';') {
        return badArguments;
    }
    actions.remove_prefix(1);
    actions = actions.substr(0, actions.find_first_of(":;"));
    if (actions.empty()) {
        return badArguments;
    }
    const char action = actions.front();
    actions.remove_prefix(1);
    switch (action) {
    case 'c':
    case 'C':
        return resume(Mode::Running, {});
    case 's':
    case 'S':
        return resume(Mode::Step, {});
    case 'r':
        if (const std::optional<u64> first = takeHex(actions); first && takeCharacter(actions, ',')) {
            if (const std::optional<u64> end = takeHex(actions)) {
                rangeFirst = static_cast<u32>(*first);
                rangeEnd = static_cast<u32>(*end);
                return resume(Mode::Step, {});
            }
        }
        return badArguments;
    default:
        return badArguments;
    }
}

/// Notes that a packet has written to the machine: a new history begins when it next moves.
std::string Debugger::changed(std::string reply) {
    altered = altered || reply == ok;
    return reply;
}

std::optional<std::string> Debugger::answer(std::string_view packet) {
    if (packet.empty()) {
        return unknownPacket;
    }
    const std::string_view arguments = packet.substr(1);
    switch (packet.front()) {
    case '?':
        return lastStop;
    case 'g':
        return readAllRegisters();
    case 'G':
        return changed(writeAllRegisters(arguments));
    case 'p':
        return readOneRegister(arguments);
    case 'P':
        return changed(writeOneRegister(arguments));
    case 'm':
        return readMemoryDigits(arguments);
    case 'M':
        return changed(writeMemoryFrom(arguments, true));
    case 'X':
        return changed(writeMemoryFrom(arguments, false));
    case 'Z':
    case 'z': {
        std::string reply = changePoint(packet, points);
        if (stops) {
            stops.emplace(points);
        }
        return reply;
    }
    case 'c':
        return resume(Mode::Running, arguments);
    case 'C':
        return resumeWithSignal(Mode::Running, arguments);
    case 's':
        return resume(Mode::Step, arguments);
    case 'S':
        return resumeWithSignal(Mode::Step, arguments);
    case 'H':
    case 'T':
        return ok;  // there is one thread
    case 'q':
        if (packet.starts_with(monitorPacket)) {
            const std::optional<std::string> command = fromHex(packet.substr(monitorPacket.size()));
            return command && current == Mode::Stopped ? hexOf(monitor(*command)) : badArguments;
        }
        if (timeline != nullptr && packet.starts_with("qSupported")) {
            return query(packet) + ";ReverseStep+;ReverseContinue+";
        }
        return query(packet);
    case 'b':
        if (timeline == nullptr || (packet != "bs" && packet != "bc")) {
            return unknownPacket;
        }
        return current == Mode::Stopped ? goBack(packet == "bs") : badArguments;
    case 'D':
        drop();
        resume(Mode::Running, {});
        return ok;
    case 'k':
        current = Mode::Killed;
        return std::nullopt;
    case 'v':
        if (packet.starts_with("vKill")) {
            current = Mode::Killed;
            return ok;
        }
        if (packet == "vCont?") {
            return "vCont;c;C;s;S;r";
        }
        if (packet.starts_with("vCont")) {
            return resumeThreads(packet.substr(5));
        }
        return unknownPacket;
    default:
        return unknownPacket;
    }
}

std::optional<std::string> Debugger::interrupt() {
    return current == Mode::Running ? stop(stoppedByInterrupt) : std::nullopt;
}

std::optional<std::string> Debugger::beforeStep() {
    if (gifTransferGoesOn()) {
        return std::nullopt;  // the previous step is not complete
    }
    // A single step ignores the breakpoint that it starts on.
    if ((current == Mode::Running || stepped) && points.breaksAt(MipsCpu.PC)) {
        return stop(stoppedByTrap);
    }
    const std::optional<history::WatchHit> hit = points.nextWatchHit();
    return hit ? stop(watchReply(*hit)) : std::nullopt;
}

std::optional<std::string> Debugger::afterStep() {
    if (MipsCpu.pause != 0 && attached) {
        return stop(pauseReason());
    }
    if (current != Mode::Step) {
        return std::nullopt;
    }
    stepped = true;
    const u64 pc = static_cast<u32>(MipsCpu.PC);
    return pc >= rangeFirst && pc < rangeEnd ? std::nullopt : stop(stoppedByTrap);
}

}  // namespace tarn::gdb
