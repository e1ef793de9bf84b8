// The message on standard error about a paused CPU.
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

void endWithCounts() {
    std::fprintf(stderr, " after %llu steps and %llu vertical blanks\n", machine.counters.driverSteps,
                 machine.counters.verticalBlanks);
}

void reportPause(const char* speaker) {
    std::fprintf(stderr, "%s: the CPU paused at PC 0x%8.8llx, %sinstruction 0x%8.8x (%s)", speaker,
                 MipsCpu.PC, symbols::pausedInstruction() == MipsCpu.PC ? "" : "last ", MipsCpu.opcode,
                 mnemonicOf(MipsCpu.opcode));
    endWithCounts();
    for (const std::string& line : symbols::pauseReport(programSymbols())) {
        std::fprintf(stderr, "%s: %s\n", speaker, line.c_str());
    }
}

}  // namespace tarn
