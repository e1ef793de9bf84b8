// The diagnostics channels.
#include "base/diagnostics.h"

#include <cstdarg>
#include <cstdio>

namespace tarn {
namespace {

void writeToStandardOutput(const char* text) { std::fputs(text, stdout); }

void send(Channel channel, const char* text) {
    if (const auto sink = diagnosticSinks.text[static_cast<std::size_t>(channel)]) {
        sink(text);
    }
}

}  // namespace

constinit DiagnosticSinks diagnosticSinks{.text = {writeToStandardOutput}, .pictureChanged = nullptr};

void printDiagnostic(const char* format, ...) {
    // The longest described line has fewer than 200 characters.
    char text[1024] = {};
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    send(Channel::StandardOutput, text);
}

void PrintToEmuOutput(const char* text) { send(Channel::EmuOutput, text); }
void PrintToOpcodeOutput(const char* text) { send(Channel::Opcodes, text); }
void PrintToRegistersOutput(const char* text) { send(Channel::CpuRegisters, text); }

void writeToConsole(char character) {
    const char text[] = {character, '\0'};
    send(Channel::Console, text);
}

void PrintfToEmuOutput(const char* format, ...) {
    char text[1024] = {};
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    PrintToEmuOutput(text);
}

void MarkVideoOutputDirty() {
    if (diagnosticSinks.pictureChanged != nullptr) {
        diagnosticSinks.pictureChanged();
    }
}

}  // namespace tarn
