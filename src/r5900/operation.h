// The description of an instruction: one record for both execution and observers.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"
#include "memory/width.h"
#include "r5900/decode_cache.h"
#include "r5900/fields.h"
#include "r5900/step_handlers.h"

namespace tarn::r5900 {

enum class Kind : u8 {
    Stop,         ///< not implemented: pauses the CPU
    Computation,  ///< changes only registers
    Load,
    Store,
    Branch,
    BranchLikely,  ///< skips its delay slot if not taken
    Jump,
    System,  ///< anything else; ends a run
};

/// What an instruction does. The functions take its word, and change nothing.
struct Operation {
    Kind kind = Kind::Stop;
    Handler step = NI;
    Routines routines;

    /// For the complete processor: whether the destination is r0, and the routines for that case.
    bool (*namesR0)(u32 word) = [](u32) { return false; };
    Routines routinesIntoR0{};

    /// Whether the instruction, although implemented, only pauses for this word.
    bool (*pausesOn)(u32 word) = [](u32) { return false; };

    // Loads and stores.
    Width width{};
    u32 (*address)(u32 word, const MipsCpuRecord& cpu) = nullptr;

    // Branches and jumps.
    bool (*isTaken)(u32 word, const MipsCpuRecord& cpu) = nullptr;
    Gpr (*linkRegister)(u32 word) = nullptr;  ///< null if it does not link

    bool accessesMemory() const { return kind == Kind::Load || kind == Kind::Store; }
    bool hasDelaySlot() const { return isTaken != nullptr; }
};

/// The operation of an instruction word on the current processor.
const Operation& operationOf(u32 word);

/// Selects the described processor or the complete R5900. Not to be called during a run.
void chooseProcessor(bool complete);

/// Whether r0 is always 0 on the current processor.
bool keepsR0();

/// Whether a processor, selected or not, implements an instruction word.
bool isImplementedBy(bool complete, u32 word);

}  // namespace tarn::r5900
