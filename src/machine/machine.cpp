// The machine's reset and start state.
#include "machine/machine.h"

#include "base/device_codes.h"

#include <memory>

namespace tarn {
namespace {

// Initial register values. Intentional: the pointers are zero-extended.
constexpr u64 globalPointer = 0x81F80000;
constexpr u64 stackPointer = 0x81F00000;
constexpr u64 startStatus = 0x10900001;
constexpr u64 processorId = 0x2E20;

}  // namespace

constinit Machine machine;

void reset(Machine& target) {
    MemoryAreas memory = std::move(target.memory);
    Buffer localMemory = std::move(target.gs.vRam);
    std::destroy_at(&target);
    std::construct_at(&target);
    target.memory = std::move(memory);
    target.gs.vRam = std::move(localMemory);
}

void setStartState(Machine& target, u32 entry) {
    target.bios.vsyncCountdown = vsyncPeriod;
    target.bios.semaInUse = 0;
    target.cpu.GPR[REG_GP].low = globalPointer;
    target.cpu.GPR[REG_SP].low = stackPointer;
    target.cpu.CP0[cp0_register::Status][0] = startStatus;
    target.cpu.CP0[cp0_register::PRId][0] = processorId;
    target.cpu.cycle = 0;
    target.cpu.delaySlots = 0;
    target.cpu.PC = entry;
    target.counters = {};
}

}  // namespace tarn
