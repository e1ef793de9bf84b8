// The GS's registers by name, with the names and places of their fields.
#pragma once

#include "machine/gs_state.h"

#include <span>
#include <string>

namespace tarn::recording {

struct RegisterField {
    const char* name;
    unsigned first;    ///< bit
    unsigned count;    ///< bits
    bool kept = true;  ///< false: the GS here does not keep it
};

struct RegisterLayout {
    u32 address;
    const char* name;
    bool perContext;  ///< the second context's has the address after this one
    std::span<const RegisterField> fields;
};

/// The layout of a general register (address up to 0xFF) or a privileged one; null for none.
const RegisterLayout* layoutOf(u32 address);

/// Whether a write to this guest address changes a register of the display.
bool isPrivilegedRegister(u32 address);

/// "TEX0_2"; the number of an unknown register.
std::string registerName(u32 address);

/// "FBP=45 FBW=6 PSM=0", each field of a value in decimal. With `keptOnly` without those that are not kept.
std::string fieldsOf(const RegisterLayout& layout, u64 value, bool keptOnly);

/// What the state holds of a general register of context 0 or 1, as the register's value.
u64 heldValue(const GsState& state, u32 address);

}  // namespace tarn::recording
