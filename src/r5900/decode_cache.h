// The cache of decoded instructions: one page of them for each page of code in main memory.
//
// An entry is valid as long as the words it was decoded from equal those in memory; each execution compares
// them. So stores to code need no tracking, and a page of entries can be created or dropped at any
// time.
#pragma once

#include "base/types.h"
#include "machine/machine.h"

#include <array>
#include <new>
#include <type_traits>

namespace tarn::r5900 {

/// How many steps a run may still take, expressed as the last PC at which routines may continue if all code
/// up to it is straight-line. Straight-line code then needs no counter.
struct StepBudget {
    u64 lastPc;

    /// A routine may take two steps, and one is kept back: the last step of a run is always a single step.
    static constexpr u64 reserve = 3;

    static constexpr StepBudget of(u64 steps, u64 pc) { return {pc + (steps - reserve) * 4}; }
    constexpr u64 stepsLeft(u64 pc) const { return (lastPc - pc + 4 * reserve) / 4; }
    constexpr bool covers(u64 pc) const { return static_cast<s64>(pc) <= static_cast<s64>(lastPc); }
    constexpr StepBudget afterJump(u64 from, u64 to) const { return {lastPc + (to - from)}; }
};

struct DecodedInstruction;

/// Executes the instruction `at`, whose address is `pc`, and then its successors until the run ends.
///
/// `delaySlots` counts the delay slots executed inside steps; `memory` is MipsMemory. They are parameters so
/// that they stay in registers: each routine ends with a tail call of the next.
using Routine = void (*)(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory);

/// Executes the delay slot of the branch `at`, then continues at `target`.
using SlotRoutine = void (*)(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                             const u8* memory, u64 target);

/// Storage for the operands of any format.
class DecodedOperands {
  public:
    template <typename Fields>
    void set(u32 word) {
        static_assert(sizeof(Fields) <= sizeof bytes && std::is_trivially_copyable_v<Fields>);
        new (bytes.data()) Fields(Fields::from(word));
    }
    template <typename Fields>
    const Fields& get() const {
        return *static_cast<const Fields*>(static_cast<const void*>(bytes.data()));
    }

  private:
    alignas(4) std::array<u8, 4> bytes{};
};

/// A decoded instruction, with the operands of its successor: the delay slot of a branch, otherwise the
/// second instruction of a pair.
struct DecodedInstruction {
    Routine run;
    SlotRoutine runInSlot;  ///< of the successor
    u64 words;              ///< the two words it was decoded from
    DecodedOperands operands;
    DecodedOperands nextOperands;  ///< of the successor
};

/// How a decoded instruction is run.
struct Routines {
    Routine run;
    SlotRoutine runInSlot;
    void (*setOperands)(DecodedOperands& operands, u32 word);
};

inline constexpr u32 codePageBytes = 0x1000;
inline constexpr u32 codePageWords = codePageBytes / 4;

/// The instructions of one page of main memory, and two more that lead to the next page.
using CodePage = std::array<DecodedInstruction, codePageWords + 2>;

/// The page for the code at `pc`, an address in main memory; null when the host is out of memory. The call
/// may reuse the oldest page: it invalidates all pointers to decoded instructions.
CodePage* codePageAt(u64 pc);

/// The routines for an instruction word.
const Routines& routinesOf(u32 word);

/// Makes `instruction` what the two words at `pc` say.
void decode(DecodedInstruction& instruction, u64 words, u64 pc);

/// Invalidates all decoded instructions.
void dropDecodedInstructions();

}  // namespace tarn::r5900
