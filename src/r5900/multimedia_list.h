// The complete processor's second pipeline and its parallel instructions: one row each, by position.
#pragma once

#include "r5900/instruction_list.h"
#include "r5900/muldiv_complete.h"
#include "r5900/multimedia_arithmetic.h"
#include "r5900/multimedia_muldiv.h"
#include "r5900/multimedia_shuffle.h"

namespace tarn::r5900 {

using enum Table;

// clang-format off
inline constexpr Row multimediaList[] = {
    // Major opcode 28, by bits 0-5: the second pipeline, and the way to the parallel instructions.
    {Mmi, 0, "MADD", "madd %s,%s,%s", rdRsRt, computation<MADD>},
    {Mmi, 1, "MADDU", "maddu %s,%s,%s", rdRsRt, computation<MADDU>},
    {Mmi, 4, "PLZCW", "plzcw %s,%s", rdRs, computation<PLZCW>},
    {Mmi, 8, "MMI0", Table::Mmi0},
    {Mmi, 9, "MMI2", Table::Mmi2},
    {Mmi, 16, "MFHI1", "mfhi1 %s", rdOnly, computation<MFHI1>},
    {Mmi, 17, "MTHI1", "mthi1 %s", rsOnly, computation<MTHI1>},
    {Mmi, 18, "MFLO1", "mflo1 %s", rdOnly, computation<MFLO1>},
    {Mmi, 19, "MTLO1", "mtlo1 %s", rsOnly, computation<MTLO1>},
    {Mmi, 24, "MULT1", "mult1 %s,%s,%s", rdRsRt, computation<MULT1_complete>},
    {Mmi, 25, "MULTU1", "multu1 %s,%s,%s", rdRsRt, computation<MULTU1>},
    {Mmi, 26, "DIV1", "div1 %s,%s", rsRt, computation<DIV1>},
    {Mmi, 27, "DIVU1", "divu1 %s,%s", rsRt, computation<DIVU1>},
    {Mmi, 32, "MADD1", "madd1 %s,%s,%s", rdRsRt, computation<MADD1>},
    {Mmi, 33, "MADDU1", "maddu1 %s,%s,%s", rdRsRt, computation<MADDU1>},
    {Mmi, 40, "MMI1", Table::Mmi1},
    {Mmi, 41, "MMI3", Table::Mmi3},
    {Mmi, 48, "PMFHL", Table::Pmfhl},
    {Mmi, 49, "PMTHL_LW", "pmthl.lw %s", rsOnly, computation<PMTHL_LW>},
    {Mmi, 52, "PSLLH", "psllh %s,%s,%d", rdRtSa, computation<PSLLH>},
    {Mmi, 54, "PSRLH", "psrlh %s,%s,%d", rdRtSa, computation<PSRLH>},
    {Mmi, 55, "PSRAH", "psrah %s,%s,%d", rdRtSa, computation<PSRAH>},
    {Mmi, 60, "PSLLW", "psllw %s,%s,%d", rdRtSa, computation<PSLLW>},
    {Mmi, 62, "PSRLW", "psrlw %s,%s,%d", rdRtSa, computation<PSRLW>},
    {Mmi, 63, "PSRAW", "psraw %s,%s,%d", rdRtSa, computation<PSRAW>},

    // MMI0, by bits 6-10.
    {Mmi0, 0, "PADDW", "paddw %s,%s,%s", rdRsRt, computation<PADDW>},
    {Mmi0, 1, "PSUBW", "psubw %s,%s,%s", rdRsRt, computation<PSUBW>},
    {Mmi0, 2, "PCGTW", "pcgtw %s,%s,%s", rdRsRt, computation<PCGTW>},
    {Mmi0, 3, "PMAXW", "pmaxw %s,%s,%s", rdRsRt, computation<PMAXW>},
    {Mmi0, 4, "PADDH", "paddh %s,%s,%s", rdRsRt, computation<PADDH>},
    {Mmi0, 5, "PSUBH", "psubh %s,%s,%s", rdRsRt, computation<PSUBH>},
    {Mmi0, 6, "PCGTH", "pcgth %s,%s,%s", rdRsRt, computation<PCGTH>},
    {Mmi0, 7, "PMAXH", "pmaxh %s,%s,%s", rdRsRt, computation<PMAXH>},
    {Mmi0, 8, "PADDB", "paddb %s,%s,%s", rdRsRt, computation<PADDB>},
    {Mmi0, 9, "PSUBB", "psubb %s,%s,%s", rdRsRt, computation<PSUBB>},
    {Mmi0, 10, "PCGTB", "pcgtb %s,%s,%s", rdRsRt, computation<PCGTB>},
    {Mmi0, 16, "PADDSW", "paddsw %s,%s,%s", rdRsRt, computation<PADDSW>},
    {Mmi0, 17, "PSUBSW", "psubsw %s,%s,%s", rdRsRt, computation<PSUBSW>},
    {Mmi0, 18, "PEXTLW", "pextlw %s,%s,%s", rdRsRt, computation<PEXTLW>},
    {Mmi0, 19, "PPACW", "ppacw %s,%s,%s", rdRsRt, computation<PPACW>},
    {Mmi0, 20, "PADDSH", "paddsh %s,%s,%s", rdRsRt, computation<PADDSH>},
    {Mmi0, 21, "PSUBSH", "psubsh %s,%s,%s", rdRsRt, computation<PSUBSH>},
    {Mmi0, 22, "PEXTLH", "pextlh %s,%s,%s", rdRsRt, computation<PEXTLH>},
    {Mmi0, 23, "PPACH", "ppach %s,%s,%s", rdRsRt, computation<PPACH>},
    {Mmi0, 24, "PADDSB", "paddsb %s,%s,%s", rdRsRt, computation<PADDSB>},
    {Mmi0, 25, "PSUBSB", "psubsb %s,%s,%s", rdRsRt, computation<PSUBSB>},
    {Mmi0, 26, "PEXTLB", "pextlb %s,%s,%s", rdRsRt, computation<PEXTLB>},
    {Mmi0, 27, "PPACB", "ppacb %s,%s,%s", rdRsRt, computation<PPACB>},
    {Mmi0, 30, "PEXT5", "pext5 %s,%s", rdRt, computation<PEXT5>},
    {Mmi0, 31, "PPAC5", "ppac5 %s,%s", rdRt, computation<PPAC5>},

    // MMI1, by bits 6-10.
    {Mmi1, 1, "PABSW", "pabsw %s,%s", rdRt, computation<PABSW>},
    {Mmi1, 2, "PCEQW", "pceqw %s,%s,%s", rdRsRt, computation<PCEQW>},
    {Mmi1, 3, "PMINW", "pminw %s,%s,%s", rdRsRt, computation<PMINW>},
    {Mmi1, 4, "PADSBH", "padsbh %s,%s,%s", rdRsRt, computation<PADSBH>},
    {Mmi1, 5, "PABSH", "pabsh %s,%s", rdRt, computation<PABSH>},
    {Mmi1, 6, "PCEQH", "pceqh %s,%s,%s", rdRsRt, computation<PCEQH>},
    {Mmi1, 7, "PMINH", "pminh %s,%s,%s", rdRsRt, computation<PMINH>},
    {Mmi1, 10, "PCEQB", "pceqb %s,%s,%s", rdRsRt, computation<PCEQB>},
    {Mmi1, 16, "PADDUW", "padduw %s,%s,%s", rdRsRt, computation<PADDUW>},
    {Mmi1, 17, "PSUBUW", "psubuw %s,%s,%s", rdRsRt, computation<PSUBUW>},
    {Mmi1, 18, "PEXTUW", "pextuw %s,%s,%s", rdRsRt, computation<PEXTUW>},
    {Mmi1, 20, "PADDUH", "padduh %s,%s,%s", rdRsRt, computation<PADDUH>},
    {Mmi1, 21, "PSUBUH", "psubuh %s,%s,%s", rdRsRt, computation<PSUBUH>},
    {Mmi1, 22, "PEXTUH", "pextuh %s,%s,%s", rdRsRt, computation<PEXTUH>},
    {Mmi1, 24, "PADDUB", "paddub %s,%s,%s", rdRsRt, computation<PADDUB>},
    {Mmi1, 25, "PSUBUB", "psubub %s,%s,%s", rdRsRt, computation<PSUBUB>},
    {Mmi1, 26, "PEXTUB", "pextub %s,%s,%s", rdRsRt, computation<PEXTUB>},
    {Mmi1, 27, "QFSRV", "qfsrv %s,%s,%s", rdRsRt, computation<QFSRV>},

    // MMI2, by bits 6-10.
    {Mmi2, 0, "PMADDW", "pmaddw %s,%s,%s", rdRsRt, computation<PMADDW>},
    {Mmi2, 2, "PSLLVW", "psllvw %s,%s,%s", rdRtRs, computation<PSLLVW>},
    {Mmi2, 3, "PSRLVW", "psrlvw %s,%s,%s", rdRtRs, computation<PSRLVW>},
    {Mmi2, 4, "PMSUBW", "pmsubw %s,%s,%s", rdRsRt, computation<PMSUBW>},
    {Mmi2, 8, "PMFHI", "pmfhi %s", rdOnly, computation<PMFHI>},
    {Mmi2, 9, "PMFLO", "pmflo %s", rdOnly, computation<PMFLO>},
    {Mmi2, 10, "PINTH", "pinth %s,%s,%s", rdRsRt, computation<PINTH>},
    {Mmi2, 12, "PMULTW", "pmultw %s,%s,%s", rdRsRt, computation<PMULTW>},
    {Mmi2, 13, "PDIVW", "pdivw %s,%s", rsRt, computation<PDIVW>},
    {Mmi2, 14, "PCPYLD", "pcpyld %s,%s,%s", rdRsRt, computation<PCPYLD>},
    {Mmi2, 16, "PMADDH", "pmaddh %s,%s,%s", rdRsRt, computation<PMADDH>},
    {Mmi2, 17, "PHMADH", "phmadh %s,%s,%s", rdRsRt, computation<PHMADH>},
    {Mmi2, 18, "PAND", "pand %s,%s,%s", rdRsRt, computation<PAND>},
    {Mmi2, 19, "PXOR", "pxor %s,%s,%s", rdRsRt, computation<PXOR>},
    {Mmi2, 20, "PMSUBH", "pmsubh %s,%s,%s", rdRsRt, computation<PMSUBH>},
    {Mmi2, 21, "PHMSBH", "phmsbh %s,%s,%s", rdRsRt, computation<PHMSBH>},
    {Mmi2, 26, "PEXEH", "pexeh %s,%s", rdRt, computation<PEXEH>},
    {Mmi2, 27, "PREVH", "prevh %s,%s", rdRt, computation<PREVH>},
    {Mmi2, 28, "PMULTH", "pmulth %s,%s,%s", rdRsRt, computation<PMULTH>},
    {Mmi2, 29, "PDIVBW", "pdivbw %s,%s", rsRt, computation<PDIVBW>},
    {Mmi2, 30, "PEXEW", "pexew %s,%s", rdRt, computation<PEXEW>},
    {Mmi2, 31, "PROT3W", "prot3w %s,%s", rdRt, computation<PROT3W>},

    // MMI3, by bits 6-10.
    {Mmi3, 0, "PMADDUW", "pmadduw %s,%s,%s", rdRsRt, computation<PMADDUW>},
    {Mmi3, 3, "PSRAVW", "psravw %s,%s,%s", rdRtRs, computation<PSRAVW>},
    {Mmi3, 8, "PMTHI", "pmthi %s", rsOnly, computation<PMTHI>},
    {Mmi3, 9, "PMTLO", "pmtlo %s", rsOnly, computation<PMTLO>},
    {Mmi3, 10, "PINTEH", "pinteh %s,%s,%s", rdRsRt, computation<PINTEH>},
    {Mmi3, 12, "PMULTUW", "pmultuw %s,%s,%s", rdRsRt, computation<PMULTUW>},
    {Mmi3, 13, "PDIVUW", "pdivuw %s,%s", rsRt, computation<PDIVUW>},
    {Mmi3, 14, "PCPYUD", "pcpyud %s,%s,%s", rdRsRt, computation<PCPYUD>},
    {Mmi3, 18, "POR", "por %s,%s,%s", rdRsRt, computation<POR>},
    {Mmi3, 19, "PNOR", "pnor %s,%s,%s", rdRsRt, computation<PNOR>},
    {Mmi3, 26, "PEXCH", "pexch %s,%s", rdRt, computation<PEXCH>},
    {Mmi3, 27, "PCPYH", "pcpyh %s,%s", rdRt, computation<PCPYH>},
    {Mmi3, 30, "PEXCW", "pexcw %s,%s", rdRt, computation<PEXCW>},

    // PMFHL, by bits 6-10.
    {Pmfhl, 0, "PMFHL_LW", "pmfhl.lw %s", rdOnly, computation<PMFHL_LW>},
    {Pmfhl, 1, "PMFHL_UW", "pmfhl.uw %s", rdOnly, computation<PMFHL_UW>},
    {Pmfhl, 2, "PMFHL_SLW", "pmfhl.slw %s", rdOnly, computation<PMFHL_SLW>},
    {Pmfhl, 3, "PMFHL_LH", "pmfhl.lh %s", rdOnly, computation<PMFHL_LH>},
    {Pmfhl, 4, "PMFHL_SH", "pmfhl.sh %s", rdOnly, computation<PMFHL_SH>},
};
// clang-format on

}  // namespace tarn::r5900
