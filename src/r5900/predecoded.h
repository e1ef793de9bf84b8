// Owns the record of a decoded instruction, and the pages of them that stand beside the pages of main memory.
//
// An entry is valid as long as the word that it was made from equals the word in memory, which each execution
// compares. So nothing needs to track who writes code, and a page of entries can be made, or dropped, at any
// time.
#pragma once

#include "base/types.h"
#include "memory/areas.h"

#include <array>
#include <new>
#include <type_traits>

namespace tarn::r5900 {

struct Instruction;

/// Executes the instruction `at`, whose word stands at `pc`, and then those that follow, until the run ends.
///
/// `stop` is where PC would be at the end of the run if everything until there were straight-line code, and
/// so carries the number of steps left: (stop - pc) / 4. `slots` counts the delay slots executed inside
/// steps. `memory` is MipsMemory. They are parameters to stay in registers: each routine ends by calling the
/// next.
using Routine = void (*)(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory);

/// Executes the instruction behind the branch `at` as its delay slot, and then goes on at `target`.
using SlotRoutine = void (*)(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory, u64 target);

/// A decoded instruction.
struct Instruction {
    Routine run;
    SlotRoutine runInSlot;
    u32 word;                               ///< that it was decoded from
    alignas(4) std::array<u8, 4> operands;  ///< holds the Fields record of its format
};

template <class Fields>
void setOperands(Instruction& instruction, u32 word) {
    static_assert(sizeof(Fields) <= sizeof instruction.operands && std::is_trivially_copyable_v<Fields>);
    new (instruction.operands.data()) Fields(Fields::from(word));
}

template <class Fields>
const Fields& operandsOf(const Instruction& instruction) {
    return *std::launder(reinterpret_cast<const Fields*>(instruction.operands.data()));
}

inline constexpr u32 codePageBytes = 0x1000;
inline constexpr u32 codePageWords = codePageBytes / 4;

/// The instructions of one page of main memory. The one behind the last leads to the next page; as the delay
/// slot of the last it is that page's first.
using CodePage = std::array<Instruction, codePageWords + 1>;

/// The page that holds the word at `pc`, an address in main memory; null when the host has no memory for it.
/// Another page's instructions may be given up for it: no pointer to an instruction survives this call.
CodePage* codePageAt(u64 pc);

/// Makes `instruction` what `word` says.
void decode(Instruction& instruction, u32 word);

/// Makes every instruction of a fresh page a no-op of word 0, which is as valid as any.
void clearCodePage(CodePage& page);

}  // namespace tarn::r5900
