// Placeholders until this subsystem is built.
#include "r5900/interpreter.h"
namespace tarn {
void MipsUpdateCpu() {}
const char* mnemonicOf(u32) { return "NI"; }
void MipsCpuPrintRegtoOutput() {}
void MipsCpuPrintReg() {}
void MipsCpuFPR1PrintReg() {}
void PrintDebugOpcode() {}
}  // namespace tarn
