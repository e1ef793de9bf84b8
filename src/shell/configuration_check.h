// The warnings about a configuration file that cannot mean what it says.
#pragma once

namespace tarn {

class IniFile;

/// Warns on standard error of every key that nothing reads, naming the nearest one that something does, and
/// of every number that is none, naming the value that it is taken for.
void warnAboutConfiguration(const IniFile& file);

}  // namespace tarn
