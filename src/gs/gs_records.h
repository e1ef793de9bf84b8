// Saving and restoring the GS's registers as bytes, without local memory.
#pragma once

#include "machine/gs_state.h"

#include <span>
#include <vector>

namespace tarn {

/// Whether register writes can lead to this state. Drawing takes their bounds for granted: what is used as an
/// index, and what decides how much one primitive or transfer has to do.
bool isReachable(const GsState& state);

/// The bytes of all fields, without padding: equal for equal states.
std::vector<u8> saveGsRecords(const GsState& state);

/// Puts the fields back. False, with the state as it was, when the bytes are not those of a state that is
/// reachable.
bool restoreGsRecords(GsState& state, std::span<const u8> bytes);

}  // namespace tarn
