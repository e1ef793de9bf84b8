// The cache of decoded instructions: pages of them that stand beside the pages of main memory.
//
// An entry is valid as long as the words that it was made from equal those in memory, which each execution
// compares. So nothing needs to track who writes code, and a page of entries can be made, or dropped, at any
// time.
#pragma once

#include "base/types.h"
#include "machine/machine.h"

#include <array>
#include <new>
#include <type_traits>

namespace tarn::r5900 {

/// How many steps a run may still take, as the last PC at which routines may go on if everything until there
/// is straight-line code. Straight-line code then has nothing to count.
struct StepBudget {
    u64 lastPc;

    /// The routines need room for two steps, and leave one, so that a run's last step is always a plain one.
    static constexpr u64 reserve = 3;

    static constexpr StepBudget of(u64 steps, u64 pc) { return {pc + (steps - reserve) * 4}; }
    constexpr u64 stepsLeft(u64 pc) const { return (lastPc - pc + 4 * reserve) / 4; }
    constexpr bool covers(u64 pc) const { return static_cast<s64>(pc) <= static_cast<s64>(lastPc); }
    constexpr StepBudget afterJump(u64 from, u64 to) const { return {lastPc + (to - from)}; }
};

struct DecodedInstruction;

/// Executes the instruction `at`, whose word stands at `pc`, and then those that follow, until the run ends.
///
/// `delaySlots` counts the delay slots executed inside steps; `memory` is MipsMemory. They are parameters to
/// stay in registers: each routine ends by calling the next.
using Routine = void (*)(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots, const u8* memory);

/// Executes the instruction behind the branch `at` as its delay slot, and then goes on at `target`.
using SlotRoutine = void (*)(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                             const u8* memory, u64 target);

/// Room for the Fields record of any format.
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

/// A decoded instruction, with what it needs of the one behind it: that is its delay slot if it is a branch,
/// and may be executed along with it if it is not.
struct DecodedInstruction {
    Routine run;
    SlotRoutine runInSlot;  ///< the one behind
    u64 words;              ///< that the two were decoded from
    DecodedOperands operands;
    DecodedOperands nextOperands;  ///< of the one behind
};

/// How an instruction is run decoded.
struct Routines {
    Routine run;
    SlotRoutine runInSlot;
    void (*setOperands)(DecodedOperands& operands, u32 word);
};

inline constexpr u32 codePageBytes = 0x1000;
inline constexpr u32 codePageWords = codePageBytes / 4;

/// The instructions of one page of main memory. The two behind the last lead to the next page.
using CodePage = std::array<DecodedInstruction, codePageWords + 2>;

/// The page that holds the word at `pc`, an address in main memory; null when the host has no memory for it.
/// Another page's instructions may be given up for it: no pointer to an instruction survives this call.
CodePage* codePageAt(u64 pc);

/// How the instruction with this word is run.
const Routines& routinesOf(u32 word);

/// Makes `instruction` what the two words at `pc` say.
void decode(DecodedInstruction& instruction, u64 words, u64 pc);

/// Has every instruction decoded again.
void dropDecodedInstructions();

}  // namespace tarn::r5900
