// The machine's state as bytes: its records, and its buffers.
#pragma once

#include "machine/machine.h"

#include <span>
#include <vector>

namespace tarn::history {

/// The bytes of all records, without the buffers and without padding. Two machines with the same records have
/// the same bytes.
std::vector<u8> saveRecords(const Machine& source);

/// How many that is.
std::size_t recordBytes();

/// Puts the records back; `bytes` are recordBytes() bytes that saveRecords has made.
void restoreRecords(Machine& target, std::span<const u8> bytes);

/// The same for bytes of any origin. False, with the machine as it was, when no run can lead to what they
/// say.
bool restoreForeignRecords(Machine& target, std::span<const u8> bytes);

/// The machine's buffers; their contents are the rest of its state.
std::vector<std::span<u8>> buffersOf(Machine& source);

}  // namespace tarn::history
