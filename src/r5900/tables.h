// Declares the dispatch tables and their mnemonic tables.
#pragma once

#include "base/types.h"

#include <array>

namespace tarn::r5900 {

/// Executes the instruction whose word is in MipsCpu.opcode and moves PC, or pauses and leaves PC.
using Handler = void (*)();

/// The handler of everything that is not implemented: it pauses, and nothing else.
void NI();

/// The handler that the tables lead to for an instruction word, whatever dispatchers there are on the way.
Handler handlerOf(u32 word);

// Each pair has the same index: the field in the comment.
extern const std::array<Handler, 64> normal_opc;    // bits 26-31
extern const std::array<Handler, 64> special_opc;   // bits 0-5
extern const std::array<Handler, 32> regimm_opc;    // bits 16-20
extern const std::array<Handler, 32> cop0_opc;      // bits 21-25
extern const std::array<Handler, 64> cop0c0_opc;    // bits 0-5
extern const std::array<Handler, 64> special2_opc;  // bits 0-5
extern const std::array<Handler, 32> cop1_opc;      // bits 21-25
extern const std::array<Handler, 4> cop1_bc1_opc;   // bits 16-17
extern const std::array<Handler, 64> cop1_s_opc;    // bits 0-5
extern const std::array<Handler, 64> cop1_d_opc;    // bits 0-5
extern const std::array<Handler, 64> cop1_W_L_opc;  // bits 0-5

extern const std::array<const char*, 64> debug_normal_opc;
extern const std::array<const char*, 64> debug_special_opc;
extern const std::array<const char*, 32> debug_regimm_opc;
extern const std::array<const char*, 32> debug_cop0_opc;
extern const std::array<const char*, 64> debug_cop0c0_opc;
extern const std::array<const char*, 64> debug_special2_opc;
extern const std::array<const char*, 32> debug_cop1_opc;
extern const std::array<const char*, 4> debug_cop1_bc1_opc;
extern const std::array<const char*, 64> debug_cop1_s_opc;
extern const std::array<const char*, 64> debug_cop1_d_opc;
extern const std::array<const char*, 64> debug_cop1_W_L_opc;

}  // namespace tarn::r5900
