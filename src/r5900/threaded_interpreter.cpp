// The rare paths of the threaded interpreter: the end of a run, and instructions that are not decoded yet.
#include "r5900/threaded_interpreter.h"

#include "r5900/interpreter.h"

namespace tarn::r5900 {

namespace {

/// Code from here on takes single steps: there is no memory after the last page for the decoder to read.
constexpr u64 codeEnd = mainMemorySize - codePageBytes;

/// Updates the CPU record; `pc` is the next instruction.
void leave(u64 pc, StepBudget budget, u64 delaySlots) {
    runState.steps = runState.limit - budget.stepsLeft(pc);
    MipsCpu.cycle = runState.cycleAtStart + runState.steps + delaySlots;
    MipsCpu.delaySlots = runState.delaySlotsAtStart + delaySlots;
    MipsCpu.PC = pc;
    runState.lastStep = {pc, MipsCpu.cycle};
}

}  // namespace

void stepPlainly(DecodedInstruction*, u64 pc, StepBudget budget, u64 delaySlots, const u8*) {
    leave(pc, budget, delaySlots);
    MipsUpdateCpu();
    runState.steps += 1;
}

void stepSlotPlainly(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8*,
                     u64 target) {
    leave(pc, budget, delaySlots);
    runState.lastStep.branchWasSeen = true;
    MipsCpu.opcode = firstWord(at->words);
    MipsCpu.cycle += 1;
    jumpTo(target);
    runState.steps += 1;
}

void endBefore(DecodedInstruction*, u64 pc, StepBudget budget, u64 delaySlots, const u8*) {
    leave(pc, budget, delaySlots);
}

void interrupted(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory) {
    if (!budget.covers(pc)) {
        return endOfBudget(at, pc, budget, delaySlots, memory);
    }
    decode(*at, wordsAt(memory, pc), pc);
    return at->run(at, pc, budget, delaySlots, memory);
}

void find(u64 pc, StepBudget budget, u64 delaySlots, const u8* memory) {
    // The rotation puts addresses that are not aligned out of range, too.
    const bool isCode = std::rotr(pc, 2) < codeEnd / 4 && memory != nullptr;
    CodePage* page = isCode ? codePageAt(pc) : nullptr;
    if (page == nullptr) {
        return endOfBudget(nullptr, pc, budget, delaySlots, memory);
    }
    return next(&(*page)[pc % codePageBytes / 4], pc, budget, delaySlots, memory);
}

void enterNextPage(DecodedInstruction*, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory) {
    return find(pc, budget, delaySlots, memory);
}

}  // namespace tarn::r5900
