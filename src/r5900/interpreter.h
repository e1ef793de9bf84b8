// The interpreter's entry points: one step, and the register and opcode displays.
#pragma once

#include "base/types.h"
#include "machine/processor.h"

namespace tarn {

/// The mnemonic of an instruction word as the tables name it ("ADDIU", "C_EQ_S", "NI").
const char* mnemonicOf(u32 word);

/// Whether the processor implements an instruction word.
bool isImplemented(u32 word);

/// Sends the 34 register lines (r0 to ra, hi, lo) to the CpuRegisters pane.
void MipsCpuPrintRegtoOutput();

/// Print the integer or the single-precision registers to standard output, three a line.
void MipsCpuPrintReg();
void MipsCpuFPR1PrintReg();

/// Prints the decoding of the current instruction word, by name, to standard output.
void PrintDebugOpcode();

}  // namespace tarn
