// Owns the step: fetch and dispatch of one instruction, and its trace.
#include "r5900/interpreter.h"

#include "memory/areas.h"
#include "r5900/mips_cpu.h"
#include "r5900/tables.h"
#include "r5900/trace.h"

#include <cstring>

namespace tarn {

namespace {

constexpr u32 lastFetchAddress = mainMemorySize - 4;

/// Executes an instruction word. Word 0 is a no-op without a handler.
void dispatch(u32 word) {
    if (word != 0) [[likely]] {
        r5900::normal_opc[r5900::majorOpcode(word)]();
        return;
    }
    if (r5900::tracing()) [[unlikely]] {
        r5900::traceText("nop");
    }
    MipsCpu.PC += 4;
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
    dispatch(MipsCpu.opcode);
    if (r5900::tracing()) [[unlikely]] {
        r5900::showStep();
    }
}

}  // namespace tarn
