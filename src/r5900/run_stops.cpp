// Runs that stop before certain steps.
#include "r5900/run_stops.h"

#include "r5900/interpreter.h"
#include "r5900/operation.h"
#include "r5900/runner.h"
#include "r5900/threaded_interpreter.h"

namespace tarn::r5900 {

const RunStops* runStops = nullptr;

namespace {

/// No access covers more bytes.
constexpr u32 longestAccess = 16;

bool mayTouch(const Operation& operation, u32 word) {
    return operation.accessesMemory() && runStops->watched->mayHold(operation.address(word, MipsCpu));
}

/// Whether a step may access watched memory, in its instruction or its delay slot. True for a slot whose
/// address may depend on the branch: stopsHere decides.
bool mayTouch(u64 words) {
    const Operation& first = operationOf(firstWord(words));
    if (!first.hasDelaySlot()) {
        return mayTouch(first, firstWord(words));
    }
    const Operation& second = operationOf(secondWord(words));
    return second.hasDelaySlot() || (first.linkRegister != nullptr && second.accessesMemory()) ||
           mayTouch(second, secondWord(words));
}

/// Whether a step of these words can access memory.
bool accessesMemory(u64 words) {
    const Operation& first = operationOf(firstWord(words));
    const Operation& second = operationOf(secondWord(words));
    return first.accessesMemory() ||
           (first.hasDelaySlot() && (second.accessesMemory() || second.hasDelaySlot()));
}

void runWatched(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory) {
    if (mayTouch(at->words)) [[unlikely]] {
        MipsCpu.PC = pc;
        if (runStops->stopsHere()) {
            return endBefore(at, pc, budget, delaySlots, memory);
        }
    }
    return routinesOf(firstWord(at->words)).run(at, pc, budget, delaySlots, memory);
}

u64 runWithStops(u64 limit) {
    if (runStops->stopsHere()) {
        return 0;
    }
    if (const u64 steps = runDecoded(limit); steps != 0) {
        return steps;
    }
    // The run is too short for routines, or begins outside code.
    MipsUpdateCpu();
    return 1;
}

}  // namespace

void WatchedLines::add(u32 address, u32 bytes) {
    const u64 margin = longestAccess - 1;
    for (u64 at = 0; at < bytes + margin + lineBytes; at += lineBytes) {
        const u64 offset = std::min<u64>(at, bytes + margin - 1);
        const u32 line = lineOf(static_cast<u32>(address - margin + offset));
        bits[line / 64] |= u64{1} << line % 64;
    }
}

void placeStop(DecodedInstruction& instruction, u64 pc) {
    if (instruction.run == enterNextPage) {
        return;
    }
    const bool watching = runStops->watched != nullptr;
    if (runStops->breaksAt(static_cast<u32>(pc))) {
        instruction.run = endBefore;
    } else if (watching && accessesMemory(instruction.words)) {
        instruction.run = runWatched;
    } else if (runStops->breaksAt(static_cast<u32>(pc) + 4) ||
               (watching && operationOf(secondWord(instruction.words)).accessesMemory())) {
        instruction.run = routinesOf(firstWord(instruction.words)).run;  // not as a pair
    }
}

void stopRuns(const RunStops* stops) {
    runStops = stops;
    runMethod = stops != nullptr ? runWithStops : runDecoded;
    endOfBudget = stops != nullptr ? endBefore : stepPlainly;
    dropDecodedInstructions();
}

}  // namespace tarn::r5900
