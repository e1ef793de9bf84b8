// Displays for debugging: the register file, and the current instruction word by name.
#include "base/bits.h"
#include "base/diagnostics.h"
#include "machine/machine.h"
#include "r5900/fields.h"
#include "r5900/interpreter.h"
#include "r5900/register_lines.h"
#include "r5900/register_names.h"
#include "r5900/tables.h"
#include "r5900/trace.h"

#include <cstring>

namespace tarn {

using r5900::integerRegister;

void MipsCpuPrintRegtoOutput() {
    for (std::size_t slot = 0; slot < debug_r5900_reg.size(); ++slot) {
        char* at = stpcpy(debugTempOpcodeText.data(), debug_r5900_reg[slot]);
        at = writeHexDigits(stpcpy(at, " : "), integerRegister(slot), mostHexDigits);
        *at = '\0';
        PrintToRegistersOutput(debugTempOpcodeText.data());
    }
}

void MipsCpuPrintReg() {
    const auto& name = debug_r5900_reg;
    for (std::size_t slot = 0; slot < 33; slot += 3) {
        printDiagnostic("%s : %16.16llx  | %s : %16.16llx | %s :%16.16llx  | \n", name[slot],
                        integerRegister(slot), name[slot + 1], integerRegister(slot + 1), name[slot + 2],
                        integerRegister(slot + 2));
    }
    printDiagnostic("%s : %16.16llx  |      \n", name[33], integerRegister(33));
}

void MipsCpuFPR1PrintReg() {
    const auto& name = debug_r5900_cop1_reg;
    const auto value = [](std::size_t number) { return double{MipsCpu.FPR32[number]}; };
    for (std::size_t i = 0; i < 30; i += 3) {
        printDiagnostic("%4s : %12.4f  | %4s : %12.4f | %4s :%12.4f  | \n", name[i], value(i), name[i + 1],
                        value(i + 1), name[i + 2], value(i + 2));
    }
    printDiagnostic("%4s : %12.4f  | %4s : %12.4f | \n", name[30], value(30), name[31], value(31));
}

void PrintDebugOpcode() {
    using namespace r5900;
    const MnemonicTables& name = processor->mnemonics;
    const u32 word = MipsCpu.opcode;
    printDiagnostic("==>%8lx\n", static_cast<unsigned long>(word));
    switch (majorOpcode(word)) {
    case 0:
        printDiagnostic("r5900:dbg_opcode_special: %s \n", name.debug_special_opc[functionCode(word)]);
        return;
    case 1:
        printDiagnostic("r5900:dbg_opcode_regimm: %s \n", name.debug_regimm_opc[regimmCode(word)]);
        return;
    case 16:
        printDiagnostic("r5900:dbg_opcode_cop0: %s \n", name.debug_cop0_opc[coprocessorCode(word)]);
        printDiagnostic("r5900:dbg_opcode_cop0c0: %s \n", name.debug_cop0c0_opc[functionCode(word)]);
        return;
    case 17:
        switch (coprocessorCode(word)) {
        case 8:
            printDiagnostic("r5900:debug_cop1_BC1_opc: %s \n",
                            name.debug_cop1_bc1_opc[conditionBranchCode(word)]);
            return;
        case 16:
            printDiagnostic("r5900:debug_cop1_S_opc: %s \n", name.debug_cop1_s_opc[functionCode(word)]);
            return;
        case 20:
            printDiagnostic("r5900:debug_cop1_W_opc: %s \n", name.debug_cop1_W_L_opc[functionCode(word)]);
            return;
        default:  // Double precision has no line of its own.
            printDiagnostic("r5900:dbg_opcode_cop1: %s \n", name.debug_cop1_opc[coprocessorCode(word)]);
            return;
        }
    case 28:  // Intentional: prints both lines.
        printDiagnostic("r5900:dbg_opcode_special2: %s \n", mnemonicOf(word));
        break;
    default:
        break;
    }
    printDiagnostic("r5900:dbg_opcode: %s \n", name.debug_normal_opc[majorOpcode(word)]);
}

}  // namespace tarn
