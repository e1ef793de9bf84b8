// The look ahead for watchpoints: taken branches and their delay slots, loads and stores, before they
// happen.
#include "history/memory_access.h"

#include "machine/machine.h"
#include "memory/memory.h"
#include "r5900/delay_slot.h"
#include "r5900/operation.h"

namespace tarn::history {

namespace {

using namespace r5900;

/// Puts back what looking ahead changes: PC, which moves over branches, and the registers that jumps link.
class Rewind {
  public:
    Rewind() = default;
    ~Rewind() {
        MipsCpu.PC = pc;
        if (registers) {
            MipsCpu.GPR = *registers;
        }
    }
    Rewind(const Rewind&) = delete;
    Rewind& operator=(const Rewind&) = delete;

    void keepRegisters() {
        if (!registers) {
            registers = MipsCpu.GPR;
        }
    }

  private:
    u64 pc = MipsCpu.PC;
    std::optional<decltype(MipsCpu.GPR)> registers;  ///< kept only when a jump links: this runs at every step
};

std::optional<u32> fetch() {
    const auto address = static_cast<u32>(MipsCpu.PC);
    if (MipsMemory == nullptr || address > mainMemorySize - sizeof(u32)) {
        return std::nullopt;
    }
    return loadFrom<u32>(MipsMemory, address);
}

}  // namespace

std::optional<MemoryAccess> nextMemoryAccess() {
    Rewind rewind;
    for (u32 depth = 0; depth <= maximumDelaySlotDepth; ++depth) {
        const std::optional<u32> word = fetch();
        if (!word) {
            return std::nullopt;
        }
        const Operation& operation = operationOf(*word);
        if (operation.accessesMemory()) {
            return MemoryAccess{operation.address(*word), bytesOf(operation.width),
                                operation.kind == Kind::Load ? Access::Load : Access::Store};
        }
        if (!operation.hasDelaySlot()) {
            return std::nullopt;
        }
        if (operation.links) {
            rewind.keepRegisters();
        }
        if (!operation.leaves(*word)) {
            return std::nullopt;
        }
        MipsCpu.PC += 4;
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
