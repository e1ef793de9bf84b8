// The call stack of the guest program, recovered from its code and its stack.
#include "symbols/call_chain.h"

#include "base/bits.h"
#include "memory/width_helpers.h"

namespace tarn::symbols {
namespace {

constexpr std::size_t longestChain = 32;
constexpr u32 longestPrologue = 4096;  // bytes searched for the instruction that saves the return address

enum Opcode : u32 { opSpecial = 0, opJal = 3, opAddiu = 9, opDaddiu = 25, opSw = 43, opSd = 63 };
enum Register : u32 { sp = 29, ra = 31 };

class Reader {
  public:
    explicit Reader(std::span<const u8> mainMemory) : memory(mainMemory) {}

    bool holds(u32 address) const { return u64{address} + 4 <= memory.size(); }
    u32 word(u32 address) const { return loadFrom<u32>(memory.data(), address); }

    /// The call before a return address; its delay slot is between them.
    std::optional<u32> callBefore(u32 address) const {
        const u32 site = address - 8;
        if (address % 4 != 0 || address < 8 || !holds(site)) {
            return std::nullopt;
        }
        const u32 code = word(site);
        const bool isJalr = bits(code, 26, 6) == opSpecial && bits(code, 0, 6) == 9;
        return bits(code, 26, 6) == opJal || isJalr ? std::optional(site) : std::nullopt;
    }

    /// Whether a call can lead to `function`. The target of JALR is unknown.
    bool mayCall(u32 site, u32 function) const {
        const u32 code = word(site);
        return bits(code, 26, 6) != opJal || foldAddress(bits(code, 0, 26) * 4) == function;
    }

  private:
    std::span<const u8> memory;
};

/// The stack frame of a function at some address.
struct Frame {
    u32 size = 0;                ///< bytes
    std::optional<u32> savedAt;  ///< offset of the return address from the stack pointer
};

Frame frameAt(const Reader& memory, u32 function, u32 pc) {
    Frame frame;
    for (u32 at = function; at < pc && at - function < longestPrologue && memory.holds(at); at += 4) {
        const u32 code = memory.word(at);
        const u32 opcode = bits(code, 26, 6);
        const bool isOfStack = bits(code, 21, 5) == sp;
        const u32 target = bits(code, 16, 5);
        const u32 immediate = bits(code, 0, 16);
        if (isOfStack && target == sp && (opcode == opAddiu || opcode == opDaddiu) && immediate >= 0x8000) {
            frame = {0x10000 - immediate, std::nullopt};
        } else if (isOfStack && target == ra && (opcode == opSd || opcode == opSw) && frame.size != 0) {
            frame.savedAt = immediate;
        }
    }
    return frame;
}

}  // namespace

std::vector<u32> callersOf(const SymbolTable& table, std::span<const u8> mainMemory, u64 pc, u64 stackPointer,
                           u64 returnAddress, std::vector<u32>* savedAt) {
    const Reader memory(mainMemory);
    std::vector<u32> callers;
    u32 at = foldAddress(pc);
    u32 stack = foldAddress(stackPointer);
    while (callers.size() < longestChain) {
        const Symbol* const function = table.symbolAt(at);
        if (function == nullptr || !function->isCode) {
            break;
        }
        const Frame frame = frameAt(memory, function->first, at);
        std::optional<u32> site;
        if (frame.savedAt) {
            const u32 slot = stack + *frame.savedAt;
            if (savedAt != nullptr) {
                savedAt->push_back(slot);
            }
            site = memory.holds(slot) ? memory.callBefore(foldAddress(memory.word(slot))) : std::nullopt;
        } else if (callers.empty()) {  // its callers have since used the register for other calls
            site = memory.callBefore(foldAddress(returnAddress));
            site = site && memory.mayCall(*site, function->first) ? site : std::nullopt;
        }
        if (!site) {
            break;
        }
        callers.push_back(*site);
        stack += frame.size;
        at = *site;
    }
    return callers;
}

}  // namespace tarn::symbols
