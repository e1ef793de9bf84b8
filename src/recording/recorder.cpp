// Recording, by wrapping the functions through which the devices reach the GS.
#include "recording/recorder.h"

#include "gs/gs_port.h"
#include "gs/gs_records.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/area_handlers.h"
#include "memory/width_helpers.h"
#include "recording/recording_writer.h"
#include "recording/register_fields.h"
#include "symbols/call_chain.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tarn::recording {
namespace {

/// A place with its calls: the return addresses it was derived from, and its number in the recording.
struct KnownPlace {
    struct Saved {
        u32 address;  ///< on the stack
        u32 value;
    };
    u64 pc = ~u64{0};
    u64 stackPointer = 0;
    u64 returnAddress = 0;
    std::vector<Saved> saved;
    u32 number = 0;
};

struct Recorder {
    std::FILE* stream;
    FrameRange frames;
    const symbols::SymbolTable& table;
    std::string emulator;
    GsPort port = gsPort;  ///< the wrapped functions
    std::optional<Writer> writer{};
    bool begun = false;
    std::unordered_map<u64, u32> places{};  ///< numbers of places without calls, by PC
    std::array<KnownPlace, 64> calledPlaces{};
};

std::unique_ptr<Recorder> recorder;

/// The current driver step, which executes its instruction or continues a transfer. The machine's counter is
/// not up to date during a run.
u64 currentStep() { return MipsCpu.cycle - MipsCpu.delaySlots - 1; }

std::string namesOf(const std::vector<u32>& callers) {
    std::string names;
    for (const u32 caller : callers) {
        const symbols::Symbol* const function = recorder->table.symbolAt(caller);
        names += function == nullptr ? "" : (names.empty() ? "" : " < ") + function->name;
    }
    return names;
}

u32 wordAt(u32 address) {
    return u64{address} + sizeof(u32) <= mainMemorySize ? loadFrom<u32>(MipsMemory, address) : 0;
}

/// The number of the place at `pc`, with the program's active calls. Finding those takes longer than most
/// transfers, so it is done again only if a return address on the stack has changed.
u32 calledPlace(u64 pc) {
    const u64 stackPointer = MipsCpu.GPR[REG_SP].low;
    const u64 returnAddress = MipsCpu.GPR[REG_RA].low;
    const u64 hash = (pc ^ stackPointer << 3 ^ returnAddress << 7) * 0x9E3779B97F4A7C15;
    KnownPlace& known = recorder->calledPlaces[hash >> 58];
    if (known.pc == pc && known.stackPointer == stackPointer && known.returnAddress == returnAddress &&
        std::ranges::all_of(known.saved,
                            [](const auto& slot) { return wordAt(slot.address) == slot.value; })) {
        return known.number;
    }
    const symbols::SymbolTable& table = recorder->table;
    std::vector<u32> slots;
    const std::vector<u32> callers = symbols::callersOf(table, {MipsMemory.begin(), MipsMemory.end()}, pc,
                                                        stackPointer, returnAddress, &slots);
    known = {pc, stackPointer, returnAddress, {}, 0};
    for (const u32 slot : slots) {
        known.saved.push_back({slot, wordAt(slot)});
    }
    known.number =
        recorder->writer->placeNumber({static_cast<u32>(pc), table.describe(pc), namesOf(callers)});
    return known.number;
}

/// The number of the place of an event that the program did not cause.
u32 place(u64 pc) {
    const auto [entry, isNew] = recorder->places.try_emplace(pc, 0);
    if (isNew) {
        entry->second =
            recorder->writer->placeNumber({static_cast<u32>(pc), recorder->table.describe(pc), {}});
    }
    return entry->second;
}

void add(const Event& event, u32 placeNumber) { recorder->writer->add(event, placeNumber); }

u32 recordTransfer(const u8* data, u32 quadwords) {
    const u32 done = recorder->port.transfer(data, quadwords);
    add({.kind = EventKind::Transfer, .step = currentStep(), .data = {data, std::size_t{done} * 16}},
        calledPlace(dmaWritePc));
    return done;
}

void recordWrite32(u32 address, u32 value) {
    if (isPrivilegedRegister(address)) {
        add({.kind = EventKind::Write32, .step = currentStep(), .address = address, .value = value},
            calledPlace(MipsCpu.PC));
    }
    recorder->port.write32(address, value);
}

void recordWrite64(u32 address, u64 value) {
    if (isPrivilegedRegister(address)) {
        add({.kind = EventKind::Write64, .step = currentStep(), .address = address, .value = value},
            calledPlace(MipsCpu.PC));
    }
    recorder->port.write64(address, value);
}

u64 recordRead64(u32 address) {
    const u32 field = Gs.interlace;
    const u64 value = recorder->port.read64(address);
    if (Gs.interlace != field) {
        add({.kind = EventKind::Read64, .step = currentStep(), .address = address}, place(MipsCpu.PC));
    }
    return value;
}

void beginRecording(u64 step) {
    recorder->begun = true;
    recorder->writer.emplace(recorder->stream, Start{.frame = recorder->frames.first,
                                                     .step = step,
                                                     .blends = Settings.blend == 1,
                                                     .program = Settings.ElfToExecute,
                                                     .emulator = recorder->emulator,
                                                     .records = saveGsRecords(Gs),
                                                     .localMemory = Gs.vRam});
}

void recordVerticalBlank();

void observeAll() {
    gsPort = {recordTransfer, recordWrite32, recordWrite64, recordRead64, recordVerticalBlank};
}

/// Stops recording and removes the wrappers.
void endRecording(u64 step) {
    gsPort = recorder->port;
    if (recorder->writer) {
        recorder->writer->finish(step);
        recorder->writer.reset();
    }
}

/// This blank, and the frame that it ends, have the next number.
void recordVerticalBlank() {
    recorder->port.vsync();
    add({.kind = EventKind::VerticalBlank, .step = currentStep()}, place(MipsCpu.PC));
    if (verticalBlanks + 1 == recorder->frames.last) {
        endRecording(currentStep());
    }
}

void waitForFirstFrame() {
    recorder->port.vsync();
    if (verticalBlanks + 2 == recorder->frames.first) {
        beginRecording(currentStep() + 1);
        observeAll();
    }
}

}  // namespace

void startRecording(std::FILE* stream, const FrameRange& frames, const symbols::SymbolTable& table,
                    const std::string& emulator) {
    recorder.reset(new Recorder{stream, frames, table, emulator});
    if (verticalBlanks + 1 >= frames.first) {
        recorder->frames.first = verticalBlanks + 1;
        beginRecording(machine.counters.driverSteps);
        observeAll();
    } else {
        gsPort.vsync = waitForFirstFrame;
    }
}

bool stopRecording() {
    if (recorder == nullptr) {
        return true;
    }
    endRecording(machine.counters.driverSteps);
    const bool begun = recorder->begun;
    recorder.reset();
    return begun;
}

}  // namespace tarn::recording
