// The dispatch and mnemonic tables, generated from the list of instructions.
#pragma once

#include "r5900/step_handlers.h"

#include <array>

namespace tarn::r5900 {

struct Row;

// The tables of a pair have the same index: the bits in the comment.

struct DispatchTables {
    std::array<Handler, 64> normal_opc;    // bits 26-31
    std::array<Handler, 64> special_opc;   // bits 0-5
    std::array<Handler, 32> regimm_opc;    // bits 16-20
    std::array<Handler, 32> cop0_opc;      // bits 21-25
    std::array<Handler, 64> cop0c0_opc;    // bits 0-5
    std::array<Handler, 64> special2_opc;  // bits 0-5
    std::array<Handler, 32> cop1_opc;      // bits 21-25
    std::array<Handler, 4> cop1_bc1_opc;   // bits 16-17
    std::array<Handler, 64> cop1_s_opc;    // bits 0-5
    std::array<Handler, 64> cop1_d_opc;    // bits 0-5
    std::array<Handler, 64> cop1_W_L_opc;  // bits 0-5

    // Of the complete processor only.
    std::array<Handler, 64> mmi_opc;    // bits 0-5
    std::array<Handler, 32> mmi0_opc;   // bits 6-10
    std::array<Handler, 32> mmi1_opc;   // bits 6-10
    std::array<Handler, 32> mmi2_opc;   // bits 6-10
    std::array<Handler, 32> mmi3_opc;   // bits 6-10
    std::array<Handler, 32> pmfhl_opc;  // bits 6-10
};

struct MnemonicTables {
    std::array<const char*, 64> debug_normal_opc;
    std::array<const char*, 64> debug_special_opc;
    std::array<const char*, 32> debug_regimm_opc;
    std::array<const char*, 32> debug_cop0_opc;
    std::array<const char*, 64> debug_cop0c0_opc;
    std::array<const char*, 64> debug_special2_opc;
    std::array<const char*, 32> debug_cop1_opc;
    std::array<const char*, 4> debug_cop1_bc1_opc;
    std::array<const char*, 64> debug_cop1_s_opc;
    std::array<const char*, 64> debug_cop1_d_opc;
    std::array<const char*, 64> debug_cop1_W_L_opc;
    std::array<const char*, 64> debug_mmi_opc;
    std::array<const char*, 32> debug_mmi0_opc;
    std::array<const char*, 32> debug_mmi1_opc;
    std::array<const char*, 32> debug_mmi2_opc;
    std::array<const char*, 32> debug_mmi3_opc;
    std::array<const char*, 32> debug_pmfhl_opc;
};

/// The tables of a processor.
struct Processor {
    DispatchTables handlers;
    Handler noOperation;  ///< of word 0
    MnemonicTables mnemonics;
    std::array<std::array<const Row*, 64>, 17> rows;  ///< by Table and index; null if there is no row
    bool isComplete;
};

extern const Processor describedProcessor;
extern const Processor completeProcessor;

/// The current processor, selected at start-up.
inline const Processor* processor = &describedProcessor;

}  // namespace tarn::r5900
