// Warnings about a configuration that cannot mean what it says.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

class IniFile;

/// Warns on standard error of every key that nothing reads, naming the nearest one that something does, of
/// every number that is not one, naming the value that it is taken for, and of values that make no sense.
/// `origin` is where the configuration comes from, with which each warning begins.
void warnAboutConfiguration(const IniFile& file, const char* origin);

/// A complaint about "Section:Key" that names the nearest known key, or an empty text when it is known.
std::string complaintAboutKey(std::string_view key);

}  // namespace tarn
