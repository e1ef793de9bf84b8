// Owns the record of a decoded instruction, and the pages of them that stand beside the pages of main memory.
//
// An entry is valid as long as the words that it was made from equal those in memory, which each execution
// compares. So nothing needs to track who writes code, and a page of entries can be made, or dropped, at any
// time.
#pragma once

#include "base/types.h"
#include "machine/machine.h"

#include <array>

namespace tarn::r5900 {

struct Instruction;

/// Executes the instruction `at`, whose word stands at `pc`, and then those that follow, until the run ends.
///
/// `last` is the last PC at which routines may go on if everything until there is straight-line code, and so
/// carries the number of steps left. `slots` counts the delay slots executed inside steps.
/// `memory` is MipsMemory. They are parameters to stay in registers: each routine ends by calling the next.
using Routine = void (*)(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory);

/// Executes the instruction behind the branch `at` as its delay slot, and then goes on at `target`.
using SlotRoutine = void (*)(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory, u64 target);

/// A decoded instruction, with what it needs of the one behind it: that is its delay slot if it is a branch,
/// and may be executed along with it if it is not.
struct Instruction {
    Routine run;
    SlotRoutine runInSlot;                      ///< the one behind
    u64 words;                                  ///< that the two were decoded from
    alignas(4) std::array<u8, 4> operands;      ///< holds the Fields record of its format
    alignas(4) std::array<u8, 4> nextOperands;  ///< that of the one behind
};

inline constexpr u32 codePageBytes = 0x1000;
inline constexpr u32 codePageWords = codePageBytes / 4;

/// The instructions of one page of main memory. The two behind the last lead to the next page.
using CodePage = std::array<Instruction, codePageWords + 2>;

/// The page that holds the word at `pc`, an address in main memory; null when the host has no memory for it.
/// Another page's instructions may be given up for it: no pointer to an instruction survives this call.
CodePage* codePageAt(u64 pc);

/// Makes `instruction` what the two words say.
void decode(Instruction& instruction, u64 words);

/// Makes every instruction of a fresh page a no-op of word 0, which is as valid as any.
void clearCodePage(CodePage& page);

}  // namespace tarn::r5900
