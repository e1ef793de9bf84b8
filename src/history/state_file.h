// State files.
#pragma once

#include "base/types.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarn::history {

/// Identifies the program in a file: a checksum of its bytes, or 0 if it cannot be read.
u64 programIdentity(const char* path);

/// The bytes of a state file of the machine and `picture`. Empty if there is no memory to compress them.
std::vector<u8> packState(u64 program, std::span<const u8> picture);

/// Restores the machine, and the picture if it has the same size, from the bytes of a state file. On failure
/// returns what is wrong with the bytes, and changes nothing.
std::optional<std::string> unpackState(std::span<const u8> bytes, u64 program, std::span<u8> picture);

/// Reads a file of limited size. Returns an error message on failure.
std::optional<std::string> readStateFile(const char* path, std::vector<u8>& bytes);

}  // namespace tarn::history
