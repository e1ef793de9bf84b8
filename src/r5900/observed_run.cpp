// Runs that tell an observer which way the program goes.
#include "r5900/observed_run.h"

#include "r5900/operation.h"
#include "r5900/runner.h"
#include "r5900/threaded_interpreter.h"

#include <array>

namespace tarn::r5900 {

const BranchObserver* branchObserver = nullptr;

namespace {

/// How delay slots are run, by their words: a branch is taken far more often than it is decoded.
struct KnownSlot {
    u32 word = 0;
    SlotRoutine run = nullptr;
};

constexpr unsigned knownSlotBits = 10;
std::array<KnownSlot, 1 << knownSlotBits> knownSlots;

SlotRoutine slotRoutineOf(u32 word) {
    constexpr u32 goldenRatio = 0x9E3779B1;  // spreads words that differ in a few bits
    KnownSlot& known = knownSlots[word * goldenRatio >> (32 - knownSlotBits)];
    if (known.word != word || known.run == nullptr) [[unlikely]] {
        known = {word, routinesOf(word).runInSlot};
    }
    return known.run;
}

void takeObserved(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory,
                  u64 target) {
    constexpr u64 branchAndSlot = 2;
    branchObserver->taken(firstWord(at->words), pc, target, cycleAt(pc, budget, delaySlots) + branchAndSlot);
    return slotRoutineOf(secondWord(at->words))(at, pc, budget, delaySlots, memory, target);
}

void branchLikelyObserved(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                          const u8* memory) {
    const u32 word = firstWord(at->words);
    if (!operationOf(word).isTaken(word, MipsCpu)) {
        branchObserver->slotSkipped(pc);
    }
    return routinesOf(word).run(at, pc, budget, delaySlots, memory);
}

u64 runObserved(u64 limit) {
    branchObserver->runBegins(MipsCpu.PC);
    const u64 steps = runDecoded(limit);
    branchObserver->runEnds(runState.lastStep);
    return steps;
}

}  // namespace

void observe(DecodedInstruction& instruction) {
    const Operation& operation = operationOf(firstWord(instruction.words));
    if (operation.hasDelaySlot()) {
        instruction.runInSlot = takeObserved;
        if (operation.kind == Kind::BranchLikely && instruction.run == operation.routines.run) {
            instruction.run = branchLikelyObserved;
        }
    }
}

void observeBranches(const BranchObserver* observer) {
    branchObserver = observer;
    knownSlots = {};  // of the processor chosen then
    runMethod = observer != nullptr ? runObserved : runDecoded;
    dropDecodedInstructions();
}

}  // namespace tarn::r5900
