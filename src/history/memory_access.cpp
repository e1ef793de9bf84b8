// Finding the next memory access of a program, for watchpoints: through taken branches into their delay
// slots.
#include "history/memory_access.h"

#include "machine/machine.h"
#include "memory/memory.h"
#include "r5900/branch.h"
#include "r5900/delay_slot.h"
#include "r5900/operation.h"

namespace tarn::history {

namespace {

using namespace r5900;

std::optional<u32> fetch(u64 pc) {
    const auto address = static_cast<u32>(pc);
    if (MipsMemory == nullptr || address > mainMemorySize - sizeof(u32)) {
        return std::nullopt;
    }
    return loadFrom<u32>(MipsMemory, address);
}

}  // namespace

std::optional<MemoryAccess> nextMemoryAccess(const MipsCpuRecord& cpu) {
    const MipsCpuRecord* seen = &cpu;
    std::optional<MipsCpuRecord> linked;  // as a delay slot sees it; rarely needed, and every step asks
    u64 pc = cpu.PC;
    for (u32 depth = 0; depth <= maximumDelaySlotDepth; ++depth, pc += 4) {
        const std::optional<u32> word = fetch(pc);
        if (!word) {
            return std::nullopt;
        }
        const Operation& operation = operationOf(*word);
        if (operation.accessesMemory()) {
            return MemoryAccess{operation.address(*word, *seen), bytesOf(operation.width),
                                operation.kind == Kind::Load ? Access::Load : Access::Store};
        }
        if (!operation.hasDelaySlot() || !operation.isTaken(*word, *seen)) {
            return std::nullopt;
        }
        const Gpr link = operation.linkRegister != nullptr ? operation.linkRegister(*word) : Gpr{};
        if (operation.linkRegister != nullptr && !(keepsR0() && link.number() == 0)) {
            if (!linked) {
                seen = &linked.emplace(cpu);
            }
            linked->GPR[link.number()].low = linkOf(pc);
        }
    }
    return std::nullopt;
}

u32 placeOf(u32 address, Access access) {
    const u32 word = wordOf(address);
    if (access == Access::Load && isBios(word)) {
        return biosFirst | (address & biosMask);
    }
    const u32 offset = access == Access::Load ? mainMemoryOffset<Access::Load>(word, sizeof(u32))
                                              : mainMemoryOffset<Access::Store>(word, sizeof(u32));
    return offset == notMainMemory ? address : offset + (address - word);
}

}  // namespace tarn::history
