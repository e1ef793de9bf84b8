// The machine's state in a file.
#pragma once

#include "base/types.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarn::history {

/// Stands for the program of a file: a checksum of its bytes; 0 when it cannot be read.
u64 programIdentity(const char* path);

/// The machine and `picture` as a file's bytes; none when the host has no memory for compressing them.
std::vector<u8> packState(u64 program, std::span<const u8> picture);

/// Makes the machine what the bytes of a file say; a picture of another size is left as it is. Returns what
/// is wrong with the bytes, and changes nothing then.
std::optional<std::string> unpackState(std::span<const u8> bytes, u64 program, std::span<u8> picture);

/// The bytes of a file of at most a sensible size, or the reason why there are none.
std::optional<std::string> readStateFile(const char* path, std::vector<u8>& bytes);

}  // namespace tarn::history
