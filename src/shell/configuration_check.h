// Warnings about unknown keys and unusable values of the configuration.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

class IniFile;

/// Warns on standard error about unknown keys, naming the nearest known one, about values that are not
/// numbers, naming the value used instead, and about values that make no sense. Each warning begins with
/// `origin`, the source of the configuration.
void warnAboutConfiguration(const IniFile& file, const char* origin);

/// A complaint about "Section:Key" that names the nearest known key, or an empty text when it is known.
std::string complaintAboutKey(std::string_view key);

}  // namespace tarn
