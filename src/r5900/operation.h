// What an instruction is: one record for all who ask, whether they run it or watch it.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"
#include "memory/width.h"
#include "r5900/decode_cache.h"
#include "r5900/step_handlers.h"

namespace tarn::r5900 {

enum class Kind : u8 {
    Stop,         ///< not implemented: pauses the CPU
    Computation,  ///< changes registers, and nothing else
    Load,
    Store,
    Branch,
    BranchLikely,  ///< skips its delay slot when it is not taken
    Jump,
    System,  ///< anything else; ends a run
};

/// What an instruction does. The functions take its word, and the registers as they are.
struct Operation {
    Kind kind = Kind::Stop;
    Handler step = NI;
    Routines routines;

    /// For the complete processor: whether the result goes to r0, and how the instruction is run then.
    bool (*namesR0)(u32 word) = [](u32) { return false; };
    Routines routinesIntoR0{};

    /// Whether the instruction, although implemented, only pauses for this word.
    bool (*pausesOn)(u32 word) = [](u32) { return false; };

    // Loads and stores.
    Width width{};
    u32 (*address)(u32 word) = nullptr;

    // Branches and jumps.
    bool (*leaves)(u32 word) = nullptr;  ///< whether it goes to its target now; links
    bool links = false;

    bool accessesMemory() const { return kind == Kind::Load || kind == Kind::Store; }
    bool hasDelaySlot() const { return leaves != nullptr; }
};

/// What the processor that runs does for an instruction word.
const Operation& operationOf(u32 word);

/// Chooses the processor that runs: the described one, or the complete R5900. For the time between runs.
void chooseProcessor(bool complete);

/// Whether a processor, chosen or not, implements an instruction word.
bool isImplementedBy(bool complete, u32 word);

}  // namespace tarn::r5900
