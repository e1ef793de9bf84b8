// The message about a paused CPU.
#include "shell/pause_message.h"

#include "machine/machine.h"
#include "machine/settings.h"
#include "r5900/interpreter.h"
#include "symbols/elf_symbols.h"
#include "symbols/pause_report.h"

#include <cstdio>

namespace tarn {

const symbols::SymbolTable& programSymbols() {
    static const symbols::SymbolTable table = symbols::readSymbols(Settings.ElfToExecute);
    return table;
}

std::string countsSoFar() {
    return " after " + std::to_string(machine.counters.driverSteps) + " steps and " +
           std::to_string(machine.counters.verticalBlanks) + " vertical blanks";
}

std::string pausePlace() {
    char text[160];
    std::snprintf(text, sizeof text, "the CPU paused at PC 0x%8.8llx, %sinstruction 0x%8.8x (%s)", MipsCpu.PC,
                  symbols::pausedInstruction() == MipsCpu.PC ? "" : "last ", MipsCpu.opcode,
                  mnemonicOf(MipsCpu.opcode));
    return text;
}

std::vector<std::string> pauseMessage() {
    std::vector<std::string> lines = symbols::pauseReport(programSymbols());
    lines.insert(lines.begin(), pausePlace() + countsSoFar());
    return lines;
}

void reportPause(const char* speaker) {
    for (const std::string& line : pauseMessage()) {
        std::fprintf(stderr, "%s: %s\n", speaker, line.c_str());
    }
}

}  // namespace tarn
