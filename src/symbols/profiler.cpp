// Counting while a program runs.
#include "symbols/profiler.h"

#include "gs/gs.h"
#include "machine/machine.h"
#include "r5900/branch_observer.h"

#include <cstring>
#include <utility>

namespace tarn::symbols {
namespace {

constexpr u64 wordsPerQuadword = 4;

struct Branch {
    u32 word = 0;
    u64 pc = 0;
    u64 target = 0;
    u64 cycle = 0;
};

/// The counts and the current position. A branch is counted at the next event, because the GS's work for its
/// delay slot belongs to it.
struct Profiler {
    ExecutionCounts counts;
    u64 lineStart = 0;
    u64 lastStep = 0;  ///< PC of the last step of the last run
    Branch waiting;
    bool waits = false;
    u64 cycleAtStart = 0;
    Costs gs;  ///< work of the GS counted so far

    void count(u64 end, u64 next) {
        counts.begin(lineStart);
        counts.end(end);
        lineStart = next;
    }
    void endWait() {
        if (waits) {
            waits = false;
            counts.branch(waiting.word, waiting.pc, waiting.target,
                          {waiting.cycle - cycleAtStart, gs.pixels, gs.words});
        }
    }
    void wait(const Branch& branch) {
        endWait();
        waiting = branch;
        waits = true;
    }
    void countTransfers() {
        const u64 pixels = pixelsWritten;
        const u64 words = machine.counters.gifQuadwords * wordsPerQuadword;
        if (pixels != gs.pixels || words != gs.words) {
            counts.transfer(lastStep, pixels - gs.pixels, words - gs.words);
            gs = {0, pixels, words};
        }
    }
};

std::unique_ptr<Profiler> profiler;

/// False for conditional branches, which stay inside their function.
bool mayEnterOrLeave(u32 word) {
    constexpr u32 lastWithCalls = 3;  // SPECIAL, REGIMM, J and JAL are the first major opcodes
    return word >> 26 <= lastWithCalls;
}

void runBegins(u64 pc) {
    profiler->countTransfers();
    profiler->endWait();
    profiler->lineStart = pc;
}

void taken(u32 word, u64 pc, u64 target, u64 cycle) {
    constexpr u64 branchAndSlot = 8;
    profiler->count(pc + branchAndSlot, target);
    if (mayEnterOrLeave(word)) {
        profiler->wait({word, pc, target, cycle});
    } else {
        profiler->endWait();
    }
}

void slotSkipped(u64 pc) { profiler->count(pc + 4, pc + 8); }

void runEnds(const r5900::LastStep& step) {
    profiler->lastStep = step.pc;
    if (step.pc > mainMemorySize - 4) {
        return;  // nothing was executed
    }
    const u64 executed = MipsCpu.cycle - step.cycle;
    const u64 end = step.pc + executed * 4;
    if (step.branchWasSeen) {
        profiler->lineStart = step.pc + 8;  // after the delay slot of a branch in the delay slot
        profiler->count(end, MipsCpu.PC);
        return;
    }
    profiler->count(end, MipsCpu.PC);
    if (executed > 1) {
        u32 word = 0;
        std::memcpy(&word, MipsMemory + step.pc, sizeof word);
        profiler->wait({word, step.pc, MipsCpu.PC, MipsCpu.cycle});
    }
}

constexpr r5900::BranchObserver observer{runBegins, taken, slotSkipped, runEnds};

}  // namespace

bool startCounting(const SymbolTable& table) {
    profiler = std::make_unique<Profiler>();
    if (!profiler->counts.exist()) {
        profiler.reset();
        return false;
    }
    for (const Symbol& symbol : table.symbols) {
        if (symbol.isCode) {
            profiler->counts.noteFunction(symbol.first);
        }
    }
    profiler->cycleAtStart = MipsCpu.cycle;
    countPixels(true);
    profiler->gs = {0, pixelsWritten, machine.counters.gifQuadwords * wordsPerQuadword};
    r5900::observeBranches(&observer);
    return true;
}

std::optional<ExecutionCounts> stopCounting() {
    if (profiler == nullptr) {
        return std::nullopt;
    }
    r5900::observeBranches(nullptr);
    countPixels(false);
    runBegins(MipsCpu.PC);  // counts the pending branch
    profiler->counts.finish(
        {MipsCpu.cycle - profiler->cycleAtStart, profiler->gs.pixels, profiler->gs.words});
    return std::move(std::exchange(profiler, nullptr)->counts);
}

}  // namespace tarn::symbols
