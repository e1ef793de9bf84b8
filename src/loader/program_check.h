// Whether a file is a program for the machine. Used for messages only: the loader accepts anything.
#pragma once

#include <string>

namespace tarn {

/// Why the file is not a program, as the end of a sentence that begins with its name ("is empty"). Empty if
/// it is one.
std::string whyNotProgram(const char* path);

}  // namespace tarn
