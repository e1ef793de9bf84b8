// The threaded interpreter: instruction semantics as routines over decoded operands, each of which calls the
// next.
//
// It handles straight-line code, branches and accesses to main memory. All other steps (device accesses,
// kernel calls, stops) are single steps by MipsUpdateCpu, which end the run.
#pragma once

#include "memory/main_memory.h"
#include "memory/memory.h"
#include "r5900/branch.h"
#include "r5900/branch_observer.h"
#include "r5900/decode_cache.h"
#include "r5900/delay_slot.h"
#include "r5900/loadstore.h"
#include "r5900/semantics.h"

#include <algorithm>
#include <bit>

namespace tarn::r5900 {

/// The bookkeeping of a run.
struct RunState {
    u64 limit = 0;              ///< steps
    u64 steps = 0;              ///< taken; valid after the run
    u64 cycleAtStart = 0;       ///< MipsCpu.cycle
    u64 delaySlotsAtStart = 0;  ///< MipsCpu.delaySlots
    LastStep lastStep;
};

inline RunState runState;

/// MipsCpu.cycle before the instruction at `pc`; the record itself is updated only at the end of a run.
inline u64 cycleAt(u64 pc, StepBudget budget, u64 delaySlots) {
    return runState.cycleAtStart + runState.limit - budget.stepsLeft(pc) + delaySlots;
}

constexpr u32 firstWord(u64 words) { return static_cast<u32>(words); }
constexpr u32 secondWord(u64 words) { return static_cast<u32>(words >> 32); }

// The end of a run. The rare routines must not be inlined, by link-time optimisation for example: the
// routines of instructions are flattened, and would save registers on their common path for all that these
// call.

/// Executes the instruction at `pc` as a single step, the last of the run.
[[gnu::noinline]] void stepPlainly(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                   const u8* memory);

/// The same for the delay slot of the taken branch at `pc`.
[[gnu::noinline]] void stepSlotPlainly(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                       const u8* memory, u64 target);

/// Ends the run before the instruction at `pc`.
[[gnu::noinline]] void endBefore(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                 const u8* memory);

/// The routine that ends a run when its budget is used up or it leaves the code. Selected before a run.
inline Routine endOfBudget = stepPlainly;

// Transitions from one instruction to the next.

/// The word at `pc`, an address of code, and its successor.
inline u64 wordsAt(const u8* memory, u64 pc) { return loadFrom<u64>(memory + pc, 0); }

/// Decodes an instruction that is not valid and continues, or ends the run if its budget is spent.
[[gnu::noinline]] void interrupted(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                   const u8* memory);

/// Continues at any address, after a lookup of its page.
[[gnu::noinline]] void find(u64 pc, StepBudget budget, u64 delaySlots, const u8* memory);

/// The routine of the two entries after the last instruction of a page.
[[gnu::noinline]] void enterNextPage(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                     const u8* memory);

[[gnu::always_inline]] inline void next(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                        const u8* memory) {
    if (wordsAt(memory, pc) != at->words || !budget.covers(pc)) [[unlikely]] {
        return interrupted(at, pc, budget, delaySlots, memory);
    }
    return at->run(at, pc, budget, delaySlots, memory);
}

/// Continues at `target` after the step at `pc`, whose instruction is `at` and whose last word is `executed`.
[[gnu::always_inline]] inline void goTo(u64 target, DecodedInstruction* at, u64 pc, StepBudget budget,
                                        u64 delaySlots, const u8* memory, u32 (*executed)(u64 words)) {
    const StepBudget left = budget.afterJump(pc + 4, target);
    // The same page, and the same alignment.
    if (((target ^ pc) & ~u64{codePageBytes - 4}) == 0) [[likely]] {
        return next(at + (static_cast<s64>(target - pc) >> 2), target, left, delaySlots, memory);
    }
    MipsCpu.opcode = executed(at->words);  // kept if the fetch at `target` fails
    return find(target, left, delaySlots, memory);
}

// Instructions that are not branches. `fast` executes the common case and returns false in all others; then
// `slow` handles the rarer ones, or returns false if it takes a single step.

template <auto semantics>
struct Computation {
    using Fields = FieldsOf<semantics>;
    static bool fast(const Fields& fields) {
        semantics(fields);
        return true;
    }
    static bool slow(const Fields& fields) { return fast(fields); }
};

/// Word 0, which does not write r0.
struct NoOperation {
    using Fields = NoFields;
    static bool fast(Fields) { return true; }
    static bool slow(Fields) { return true; }
};

/// A load or a store in main memory; `fast` handles the usual views.
template <Access access, Width width, auto semantics>
struct MemoryAccess {
    using Fields = FieldsOf<semantics>;
    static bool fast(const Fields& fields) {
        if (MipsMemory == nullptr) {
            __builtin_unreachable();  // it holds the running code
        }
        if (!inMainMemory(usualOffset(addressOf(fields)), bytesOf(width))) [[unlikely]] {
            return false;
        }
        semantics(fields);
        return true;
    }
    static bool slow(const Fields& fields) {
        if (mainMemoryOffset<access>(addressOf(fields), bytesOf(width)) == notMainMemory) {
            return false;
        }
        semantics(fields);
        return true;
    }
};

// Accesses of the complete processor: those that must be aligned, and those to the aligned unit around an
// address.

/// One comparison checks range and alignment: low bits that are set, rotated to the top, are out of range.
template <Access access, Width width, auto semantics>
struct AlignedAccess {
    using Fields = FieldsOf<semantics>;
    static constexpr u32 bytes = bytesOf(width);
    static bool fast(const Fields& fields) {
        if (MipsMemory == nullptr) {
            __builtin_unreachable();  // it holds the running code
        }
        constexpr int shift = std::countr_zero(bytes);
        const u32 unit = std::rotr(usualOffset(addressOf(fields)) - mainMemoryFirst, shift);
        if (unit > (mainMemorySize - mainMemoryFirst - std::max(bytes, 2U)) >> shift) [[unlikely]] {
            return false;
        }
        semantics(fields);
        return true;
    }
    static bool slow(const Fields& fields) {
        const u32 address = addressOf(fields);
        if (address % bytes != 0 || mainMemoryOffset<access>(address, bytes) == notMainMemory) {
            return false;
        }
        semantics(fields);
        return true;
    }
};

template <Access access, Width width, auto semantics>
struct SurroundingAccess {
    using Fields = FieldsOf<semantics>;
    static constexpr u32 bytes = bytesOf(width);
    static bool fast(const Fields& fields) {
        if (!inMainMemory(usualOffset(addressOf(fields)) & ~(bytes - 1), bytes)) [[unlikely]] {
            return false;
        }
        semantics(fields);
        return true;
    }
    static bool slow(const Fields& fields) {
        if (mainMemoryOffset<access>(addressOf(fields) & ~(bytes - 1), bytes) == notMainMemory) {
            return false;
        }
        semantics(fields);
        return true;
    }
};

/// An instruction that stops under a condition; a single step does the stop.
template <auto semantics, auto stops>
struct UnlessStopped {
    using Fields = FieldsOf<semantics>;
    static bool fast(const Fields& fields) {
        if (stops(fields)) [[unlikely]] {
            return false;
        }
        semantics(fields);
        return true;
    }
    static bool slow(const Fields& fields) { return fast(fields); }
};

/// An instruction of the complete processor with destination r0, which stays 0.
template <typename Operation>
struct IntoR0 {
    using Fields = typename Operation::Fields;
    static bool fast(const Fields& fields) {
        const bool done = Operation::fast(fields);
        MipsCpu.GPR[0] = {};
        return done;
    }
    static bool slow(const Fields& fields) {
        const bool done = Operation::slow(fields);
        MipsCpu.GPR[0] = {};
        return done;
    }
};

template <typename Operation>
[[gnu::noinline]] void runSlowly(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                 const u8* memory) {
    if (!Operation::slow(at->operands.get<typename Operation::Fields>())) {
        return stepPlainly(at, pc, budget, delaySlots, memory);
    }
    return next(at + 1, pc + 4, budget, delaySlots, memory);
}

template <typename Operation>
[[gnu::flatten]] void run(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                          const u8* memory) {
    if (!Operation::fast(at->operands.get<typename Operation::Fields>())) [[unlikely]] {
        return runSlowly<Operation>(at, pc, budget, delaySlots, memory);
    }
    return next(at + 1, pc + 4, budget, delaySlots, memory);
}

template <typename Operation>
[[gnu::noinline]] void runInSlotSlowly(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                       const u8* memory, u64 target) {
    if (!Operation::slow(at->nextOperands.get<typename Operation::Fields>())) {
        return stepSlotPlainly(at, pc, budget, delaySlots, memory, target);
    }
    return goTo(target, at, pc, budget, delaySlots + 1, memory, secondWord);
}

template <typename Operation>
[[gnu::flatten]] void runInSlot(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                const u8* memory, u64 target) {
    if (!Operation::fast(at->nextOperands.get<typename Operation::Fields>())) [[unlikely]] {
        return runInSlotSlowly<Operation>(at, pc, budget, delaySlots, memory, target);
    }
    return goTo(target, at, pc, budget, delaySlots + 1, memory, secondWord);
}

// Branches and jumps.

template <auto condition, DelaySlot whenNotTaken, Link links>
[[gnu::flatten]] void runBranch(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                                const u8* memory) {
    const auto& fields = at->operands.get<FieldsOf<condition>>();
    if (decideBranch<condition, links>(fields, pc)) {
        return at->runInSlot(at, pc, budget, delaySlots, memory, branchTarget(pc, fields.offset));
    }
    if constexpr (whenNotTaken == DelaySlot::Skipped) {
        return goTo(pc + 8, at, pc, budget, delaySlots, memory, firstWord);
    } else {
        return next(at + 1, pc + 4, budget, delaySlots, memory);
    }
}

template <auto targetOf>
[[gnu::flatten]] void runJump(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                              const u8* memory) {
    const u64 target = targetOf(at->operands.get<FieldsOf<targetOf>>(), pc);
    return at->runInSlot(at, pc, budget, delaySlots, memory, target);
}

// The routines of instructions.

template <typename Fields>
void setOperands(DecodedOperands& operands, u32 word) {
    operands.set<Fields>(word);
}

template <typename Operation>
inline constexpr Routines routines{run<Operation>, runInSlot<Operation>,
                                   setOperands<typename Operation::Fields>};

/// A branch in a delay slot is rare, and nests: it takes a single step.
template <auto condition, DelaySlot whenNotTaken, Link links>
inline constexpr Routines branchRoutines{runBranch<condition, whenNotTaken, links>, stepSlotPlainly,
                                         setOperands<FieldsOf<condition>>};
template <auto targetOf>
inline constexpr Routines jumpRoutines{runJump<targetOf>, stepSlotPlainly, setOperands<FieldsOf<targetOf>>};

inline constexpr Routines noOperation = routines<NoOperation>;
inline constexpr Routines plainRoutines{stepPlainly, stepSlotPlainly, setOperands<NoFields>};

}  // namespace tarn::r5900
