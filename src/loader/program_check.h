// Whether a file is a program for the machine at all. The loader takes anything; this is for messages.
#pragma once

#include <string>

namespace tarn {

/// Why the file is not a program, as the end of a sentence that begins with its name ("is empty"), or an
/// empty text when it is one.
std::string whyNotProgram(const char* path);

}  // namespace tarn
