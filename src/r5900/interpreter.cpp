// One step: fetch and dispatch of one instruction, and its trace.
#include "r5900/interpreter.h"

#include "machine/machine.h"
#include "r5900/fields.h"
#include "r5900/tables.h"
#include "r5900/trace.h"

#include <cstring>

namespace tarn {

namespace {

constexpr u32 lastFetchAddress = mainMemorySize - 4;

void dispatch(u32 word) {
    if (word != 0) [[likely]] {
        r5900::processor->handlers.normal_opc[r5900::majorOpcode(word)]();
    } else {
        r5900::processor->noOperation();
    }
}

/// The same, traced. Out of line, so that a step without tracing ends in a jump to the handler.
[[gnu::cold, gnu::noinline]] void dispatchTraced(u32 word) {
    const u64 pc = MipsCpu.PC;
    r5900::beginTracedInstruction();
    if (word == 0) {
        r5900::traceLine(word);
    }
    dispatch(word);
    r5900::showInstruction(pc, word);
}

}  // namespace

void MipsUpdateCpu() {
    MipsCpu.cycle += 1;
    // The low word of PC is a byte offset into main memory: no translation, no alignment.
    const auto address = static_cast<u32>(MipsCpu.PC);
    if (address > lastFetchAddress || MipsMemory == nullptr) [[unlikely]] {
        MipsCpu.pause = 1;
        return;
    }
    std::memcpy(&MipsCpu.opcode, MipsMemory + address, sizeof MipsCpu.opcode);
    if (r5900::tracing()) [[unlikely]] {
        dispatchTraced(MipsCpu.opcode);
        return;
    }
    dispatch(MipsCpu.opcode);
}

}  // namespace tarn
