// The GS's registers as bytes. Local memory is not among them.
#pragma once

#include "machine/gs_state.h"

#include <span>
#include <vector>

namespace tarn {

/// The bytes of all fields, without padding: equal for equal states.
std::vector<u8> saveGsRecords(const GsState& state);

/// Puts the fields back. False, with the state as it was, when the bytes are not those of any state that
/// register writes lead to.
bool restoreGsRecords(GsState& state, std::span<const u8> bytes);

}  // namespace tarn
