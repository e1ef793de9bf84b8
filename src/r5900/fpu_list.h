// The floating-point instructions: one row each, by position.
#pragma once

#include "r5900/fpu.h"
#include "r5900/fpu_complete.h"
#include "r5900/instruction_list.h"

namespace tarn::r5900 {

// clang-format off
using enum Table;

inline constexpr Row fpuList[] = {
    // Major opcode 17, by bits 21-25.
    {Cop1, 0, "MFC1", "mfc1 %s,%s", rtFs, computation<MFC1>, computation<MFC1_complete>},
    {Cop1, 1, "DMFC1", stop},
    {Cop1, 2, "CFC1", "cfc1 %s,%s", rtFs, stop, computation<CFC1>},
    {Cop1, 4, "MTC1", "mtc1 %s,%s", rtFs, computation<MTC1>},
    {Cop1, 5, "DMTC1", stop},
    {Cop1, 6, "CTC1", "ctc1 %s,%s", rtFs, stop, computation<CTC1>},
    {Cop1, 8, "BC1", Table::Bc1},
    {Cop1, 16, "COP1_S", Table::Cop1S},
    {Cop1, 17, "COP1_D", Table::Cop1D},
    {Cop1, 20, "COP1_W", Table::Cop1W},
    {Cop1, 21, "COP1_L", stop},

    // Branches on the floating-point condition, by bits 16-17.
    {Bc1, 0, "BC1F", "bc1f %x,%4llx", ccTarget, branch<BC1F>},
    {Bc1, 1, "BC1T", "bc1t %x,%4llx", ccTarget, branch<BC1T>},
    {Bc1, 2, "BC1FL", "bc1fl %x,%4llx", ccTarget, stop, branchLikely<BC1F>},
    {Bc1, 3, "BC1TL", "bc1tl %x,%4llx", ccTarget, branchLikely<BC1T>},

    // Single precision, by bits 0-5.
    {Cop1S, 0, "ADD_S", "add_s %s,%s,%s", fdFsFt, computation<ADD_S>, computation<ADD_S_complete>},
    {Cop1S, 1, "SUB_S", "sub_s %s,%s,%s\n", fdFsFt, computation<SUB_S>, computation<SUB_S_complete>},
    {Cop1S, 2, "MUL_S", "mul_s %s,%s,%s", fdFsFt, computation<MUL_S>, computation<MUL_S_complete>},
    {Cop1S, 3, "DIV_S", "div_s %s,%s,%s", fdFsFt, computation<DIV_S>, computation<DIV_S_complete>},
    {Cop1S, 4, "SQRT_S", "sqrt_s %s,%s", fdFt, stop, computation<SQRT_S>},
    {Cop1S, 5, "ABS_S", "abs_s %s,%s", fdFs, stop, computation<ABS_S>},
    {Cop1S, 6, "MOV_S", "mov_s %s,%s", fdFs, computation<MOV_S>},
    {Cop1S, 7, "NEG_S", "neg_s %s,%s", fdFs, computation<NEG_S>, computation<NEG_S_complete>},
    {Cop1S, 8, "ROUND_L_S", stop},
    {Cop1S, 9, "TRUNC_L_S", stop},
    {Cop1S, 10, "CEIL_L_S", stop},
    {Cop1S, 11, "FLOOR_L_S", stop},
    {Cop1S, 12, "ROUND_W_S", stop},
    {Cop1S, 13, "TRUNC_W_S", stop},
    {Cop1S, 14, "CEIL_W_S", stop},
    {Cop1S, 15, "FLOOR_W_S", stop},
    {Cop1S, 17, "MOVCF_S", stop},
    {Cop1S, 18, "MOVZ_S", stop},
    {Cop1S, 19, "MOVN_S", stop},
    {Cop1S, 21, "RECIP_S", stop},
    {Cop1S, 22, "RSQRT_S", "rsqrt_s %s,%s,%s", fdFsFt, stop, computation<RSQRT_S>},
    onlyComplete({Cop1S, 24, "ADDA_S", "adda_s %s,%s", fsFt, computation<ADDA_S>}),
    onlyComplete({Cop1S, 25, "SUBA_S", "suba_s %s,%s", fsFt, computation<SUBA_S>}),
    onlyComplete({Cop1S, 26, "MULA_S", "mula_s %s,%s", fsFt, computation<MULA_S>}),
    onlyComplete({Cop1S, 28, "MADD_S", "madd_s %s,%s,%s", fdFsFt, computation<MADD_S>}),
    onlyComplete({Cop1S, 29, "MSUB_S", "msub_s %s,%s,%s", fdFsFt, computation<MSUB_S>}),
    onlyComplete({Cop1S, 30, "MADDA_S", "madda_s %s,%s", fsFt, computation<MADDA_S>}),
    onlyComplete({Cop1S, 31, "MSUBA_S", "msuba_s %s,%s", fsFt, computation<MSUBA_S>}),
    {Cop1S, 33, "CVT_D_S", stop},
    {Cop1S, 36, "CVT_W_S", "cvt_w_s\t%s, %s", fdFs, computation<CVT_W_S>, computation<CVT_W_S_complete>},
    {Cop1S, 37, "CVT_L_S", stop},
    onlyComplete({Cop1S, 40, "MAX_S", "max_s %s,%s,%s", fdFsFt, computation<MAX_S>}),
    onlyComplete({Cop1S, 41, "MIN_S", "min_s %s,%s,%s", fdFsFt, computation<MIN_S>}),
    {Cop1S, 48, "C_F_S", "c_f_s %x,%s,%s", ccFsFt, stop, computation<C_F_S>},
    {Cop1S, 49, "C_UN_S", stop},
    {Cop1S, 50, "C_EQ_S", "c_eq_s %x,%s,%s", ccFsFt, computation<C_EQ_S>, computation<C_EQ_S_complete>},
    {Cop1S, 51, "C_UEQ_S", stop},
    {Cop1S, 52, "C_OLT_S", "c_olt_s %x,%s,%s", ccFsFt, computation<C_OLT_S>, computation<C_OLT_S_complete>},
    {Cop1S, 53, "C_ULT_S", stop},
    {Cop1S, 54, "C_OLE_S", "c_ole_s %x,%s,%s", ccFsFt, stop, computation<C_OLE_S>},
    {Cop1S, 55, "C_ULE_S", stop},
    {Cop1S, 56, "C_SF_S", stop},
    {Cop1S, 57, "C_NGLE_S", stop},
    {Cop1S, 58, "C_SEQ_S", stop},
    {Cop1S, 59, "C_NGL_S", stop},
    {Cop1S, 60, "C_LT_S", stop},
    {Cop1S, 61, "C_NGE_S", stop},
    {Cop1S, 62, "C_LE_S", stop},
    {Cop1S, 63, "C_NGT_S", stop},

    // Double precision, by bits 0-5: there is none.
    {Cop1D, 0, "ADD_D", stop},
    {Cop1D, 1, "SUB_D", stop},
    {Cop1D, 2, "MUL_D", stop},
    {Cop1D, 3, "DIV_D", stop},
    {Cop1D, 4, "SQRT_D", stop},
    {Cop1D, 5, "ABS_D", stop},
    {Cop1D, 6, "MOV_D", stop},
    {Cop1D, 7, "NEG_D", stop},
    {Cop1D, 8, "ROUND_L_D", stop},
    {Cop1D, 9, "TRUNC_L_D", stop},
    {Cop1D, 10, "CEIL_L_D", stop},
    {Cop1D, 11, "FLOOR_L_D", stop},
    {Cop1D, 12, "ROUND_W_D", stop},
    {Cop1D, 13, "TRUNC_W_D", stop},
    {Cop1D, 14, "CEIL_W_D", stop},
    {Cop1D, 15, "FLOOR_W_D", stop},
    {Cop1D, 17, "MOVCF_D", stop},
    {Cop1D, 18, "MOVZ_D", stop},
    {Cop1D, 19, "MOVN_D", stop},
    {Cop1D, 21, "RECIP_D", stop},
    {Cop1D, 22, "RSQRT_D", stop},
    {Cop1D, 32, "CVT_S_D", stop},
    {Cop1D, 36, "CVT_W_D", stop},
    {Cop1D, 37, "CVT_L_D", stop},
    {Cop1D, 48, "C_F_D", stop},
    {Cop1D, 49, "C_UN_D", stop},
    {Cop1D, 50, "C_EQ_D", stop},
    {Cop1D, 51, "C_UEQ_D", stop},
    {Cop1D, 52, "C_OLT_D", stop},
    {Cop1D, 53, "C_ULT_D", stop},
    {Cop1D, 54, "C_OLE_D", stop},
    {Cop1D, 55, "C_ULE_D", stop},
    {Cop1D, 56, "C_SF_D", stop},
    {Cop1D, 57, "C_NGLE_D", stop},
    {Cop1D, 58, "C_SEQ_D", stop},
    {Cop1D, 59, "C_NGL_D", stop},
    {Cop1D, 60, "C_LT_D", stop},
    {Cop1D, 61, "C_NGE_D", stop},
    {Cop1D, 62, "C_LE_D", stop},
    {Cop1D, 63, "C_NGT_D", stop},

    // Conversions from integers, by bits 0-5.
    {Cop1W, 32, "CVT_S", "cvt_s\t%s,%s", fdFs, computation<CVT_S>, computation<CVT_S_complete>},
    {Cop1W, 33, "CVT_D", stop},
};
// clang-format on

}  // namespace tarn::r5900
