// The GS's registers and their fields by name.
#pragma once

#include "machine/gs_state.h"

#include <span>
#include <string>

namespace tarn::recording {

struct RegisterField {
    const char* name;
    unsigned first;    ///< bit
    unsigned count;    ///< bits
    bool kept = true;  ///< false: the emulated GS ignores it
};

struct RegisterLayout {
    u32 address;
    const char* name;
    bool perContext;  ///< context 2's register has the next address
    std::span<const RegisterField> fields;
};

/// The layout of a general register (address up to 0xFF) or a privileged one; null if unknown.
const RegisterLayout* layoutOf(u32 address);

/// Whether a write to this guest address changes a register of the display.
bool isPrivilegedRegister(u32 address);

/// The name, like "TEX0_2", or the number of an unknown register.
std::string registerName(u32 address);

/// The fields of a value in decimal, like "FBP=45 FBW=6 PSM=0"; with `keptOnly`, only those that are kept.
std::string fieldsOf(const RegisterLayout& layout, u64 value, bool keptOnly);

/// The value of a general register of context 0 or 1, from what the state keeps of it.
u64 heldValue(const GsState& state, u32 address);

}  // namespace tarn::recording
