// The machine's state as bytes: records and buffers.
#pragma once

#include "machine/machine.h"

#include <span>
#include <vector>

namespace tarn::history {

/// The bytes of all records, without buffers and padding. Equal for equal records.
std::vector<u8> saveRecords(const Machine& source);

/// The number of these bytes.
std::size_t recordBytes();

/// Restores records from recordBytes() bytes that saveRecords has made.
void restoreRecords(Machine& target, std::span<const u8> bytes);

/// The same for untrusted bytes. Returns false, and leaves the machine unchanged, if no run leads to these
/// records.
bool restoreForeignRecords(Machine& target, std::span<const u8> bytes);

/// The machine's buffers, whose contents are the rest of its state.
std::vector<std::span<u8>> buffersOf(Machine& source);

}  // namespace tarn::history
