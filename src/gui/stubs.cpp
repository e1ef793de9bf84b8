// Placeholders until this subsystem is built.
#include "gui/text_sinks.h"
namespace tarn {
void PrintToEmuOutput(const char*) {}
void PrintToOpcodeOutput(const char*) {}
void PrintToRegistersOutput(const char*) {}
void PrintfToEmuOutput(const char*, ...) {}
void MarkVideoOutputDirty() {}
}  // namespace tarn
