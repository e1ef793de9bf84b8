// Owns the dispatch: which instruction each field of a word selects, and the instruction's name.
#include "r5900/tables.h"

#include "r5900/branch.h"
#include "r5900/fpu.h"
#include "r5900/integer.h"
#include "r5900/interpreter.h"
#include "r5900/loadstore.h"
#include "r5900/muldiv.h"
#include "r5900/system.h"

namespace tarn::r5900 {

void NI() { MipsCpu.pause = 1; }

namespace {

// Dispatchers: entries of one table that call the entry of the next.

void SPECIAL() { special_opc[functionCode(MipsCpu.opcode)](); }
void REGIMM() { regimm_opc[regimmCode(MipsCpu.opcode)](); }
void COP0() { cop0_opc[coprocessorCode(MipsCpu.opcode)](); }
void C0() { cop0c0_opc[functionCode(MipsCpu.opcode)](); }
void SPECIAL2() { special2_opc[functionCode(MipsCpu.opcode)](); }
void COP1() { cop1_opc[coprocessorCode(MipsCpu.opcode)](); }
void BC1() { cop1_bc1_opc[conditionBranchCode(MipsCpu.opcode)](); }
void COP1_S() { cop1_s_opc[functionCode(MipsCpu.opcode)](); }
void COP1_D() { cop1_d_opc[functionCode(MipsCpu.opcode)](); }
void COP1_W() { cop1_W_L_opc[functionCode(MipsCpu.opcode)](); }

/// One entry of a dispatch table and of its mnemonic table.
struct Entry {
    Handler handler;
    const char* name;
};

template <std::size_t size>
constexpr std::array<Handler, size> handlersOf(const std::array<Entry, size>& entries) {
    std::array<Handler, size> handlers{};
    for (std::size_t i = 0; i < size; ++i) {
        handlers[i] = entries[i].handler;
    }
    return handlers;
}

template <std::size_t size>
constexpr std::array<const char*, size> namesOf(const std::array<Entry, size>& entries) {
    std::array<const char*, size> names{};
    for (std::size_t i = 0; i < size; ++i) {
        names[i] = entries[i].name;
    }
    return names;
}

// An implemented instruction, one that stops, and no instruction at all.
#define RUN(mnemonic)                                                                                        \
    { mnemonic, #mnemonic }
#define STOP(mnemonic)                                                                                       \
    { NI, #mnemonic }
#define NONE STOP(NI)

// Eight entries a row; the number is the first one's position.
// clang-format off

/// By major opcode, bits 26-31.
constexpr std::array<Entry, 64> normal{{
    /*  0 */ RUN(SPECIAL), RUN(REGIMM), RUN(J), RUN(JAL), RUN(BEQ), RUN(BNE), RUN(BLEZ), RUN(BGTZ),
    /*  8 */ RUN(ADDI), RUN(ADDIU), RUN(SLTI), RUN(SLTIU), RUN(ANDI), RUN(ORI), RUN(XORI), RUN(LUI),
    /* 16 */ RUN(COP0), RUN(COP1), STOP(COP2), STOP(COP1X), RUN(BEQL), RUN(BNEL), RUN(BLEZL), STOP(BGTZL),
    /* 24 */ STOP(DADDI), RUN(DADDIU), RUN(LDL), RUN(LDR), RUN(SPECIAL2), STOP(JALX), RUN(LQ), RUN(SQ),
    /* 32 */ RUN(LB), RUN(LH), RUN(LWL), RUN(LW), RUN(LBU), RUN(LHU), RUN(LWR), RUN(LWU),
    /* 40 */ RUN(SB), RUN(SH), RUN(SWL), RUN(SW), RUN(SDL), RUN(SDR), RUN(SWR), RUN(CACHE),
    /* 48 */ STOP(LL), RUN(LWC1), STOP(LWC2), STOP(PREF), STOP(LLD), STOP(LDC1), STOP(LDC2), RUN(LD),
    /* 56 */ STOP(SC), RUN(SWC1), STOP(SWC2), NONE, STOP(SCD), STOP(SDC1), STOP(SDC2), RUN(SD),
}};

/// Major opcode 0, by bits 0-5.
constexpr std::array<Entry, 64> special{{
    /*  0 */ RUN(SLL), STOP(MOVCI), RUN(SRL), RUN(SRA), RUN(SLLV), NONE, RUN(SLRV), RUN(SRAV),
    /*  8 */ RUN(JR), {JALR, "JALR "}, RUN(MOVZ), RUN(MOVN), RUN(SYSCALL), STOP(BREAK), NONE, RUN(SYNC),
    /* 16 */ RUN(MFHI), STOP(MTHI), RUN(MFLO), STOP(MTLO), STOP(DSLLV), NONE, STOP(DSRLV), STOP(DSRAV),
    /* 24 */ RUN(MULT), STOP(MULTU), RUN(DIV), RUN(DIVU), STOP(DMULT), RUN(DMULTU), STOP(DDIV), STOP(DDIVU),
    /* 32 */ RUN(ADD), RUN(ADDU), RUN(SUB), RUN(SUBU), RUN(AND), RUN(OR), RUN(XOR), STOP(NOR),
    /* 40 */ NONE, NONE, RUN(SLT), RUN(SLTU), STOP(DADD), RUN(DADDU), STOP(DSUB), RUN(DSUBU),
    /* 48 */ STOP(TGE), STOP(TGEU), STOP(TLT), STOP(TLTU), STOP(TEQ), NONE, STOP(TNE), NONE,
    /* 56 */ RUN(DSLL), NONE, RUN(DSRL), STOP(DSRA), RUN(DSLL32), NONE, RUN(DSRL32), RUN(DSRA32),
}};

/// Major opcode 1, by bits 16-20.
constexpr std::array<Entry, 32> regimm{{
    /*  0 */ RUN(BLTZ), RUN(BGEZ), RUN(BLTZL), RUN(BGEZL), NONE, NONE, NONE, NONE,
    /*  8 */ STOP(TGEI), STOP(TGEIU), STOP(TLTI), STOP(TLTIU), STOP(TEQI), NONE, STOP(TNEI), NONE,
    /* 16 */ STOP(BLTZAL), STOP(BGEZAL), STOP(BLTZALL), STOP(BGEZALL), NONE, NONE, NONE, NONE,
    /* 24 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
}};

/// Major opcode 16, by bits 21-25.
constexpr std::array<Entry, 32> cop0{{
    /*  0 */ RUN(MFC0), STOP(DMFC0), NONE, NONE, STOP(MTC0), STOP(DMTC0), NONE, NONE,
    /*  8 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 16 */ RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0),
    /* 24 */ RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0), RUN(C0),
}};

/// Major opcode 16 with bit 25 set, by bits 0-5.
constexpr std::array<Entry, 64> cop0c0{{
    /*  0 */ NONE, STOP(TLBR), STOP(TLBWI), NONE, NONE, NONE, STOP(TLBWR), NONE,
    /*  8 */ STOP(TLBP), NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 16 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 24 */ STOP(ERET), NONE, NONE, NONE, NONE, NONE, NONE, STOP(DERET),
    /* 32 */ STOP(WAIT), NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 40 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 48 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 56 */ RUN(EI), RUN(DI), NONE, NONE, NONE, NONE, NONE, NONE,
}};

/// Major opcode 28, by bits 0-5.
constexpr std::array<Entry, 64> special2{{
    /*  0 */ STOP(MADD), STOP(MADDU), STOP(MUL), NONE, STOP(MSUB), STOP(MSUBU), NONE, NONE,
    /*  8 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 16 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 24 */ RUN(MULT1), NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 32 */ STOP(CLZ), STOP(CLO), NONE, NONE, STOP(DLCZ), STOP(DLCO), NONE, NONE,
    /* 40 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 48 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 56 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, STOP(SDBBP),
}};

/// Major opcode 17, by bits 21-25.
constexpr std::array<Entry, 32> cop1{{
    /*  0 */ RUN(MFC1), STOP(DMFC1), STOP(CFC1), NONE, RUN(MTC1), STOP(DMTC1), STOP(CTC1), NONE,
    /*  8 */ RUN(BC1), NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 16 */ RUN(COP1_S), RUN(COP1_D), NONE, NONE, RUN(COP1_W), STOP(COP1_L), NONE, NONE,
    /* 24 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
}};

/// Branches on the floating-point condition, by bits 16-17.
constexpr std::array<Entry, 4> cop1_bc1{{
    /*  0 */ RUN(BC1F), RUN(BC1T), STOP(BC1FL), RUN(BC1TL),
}};

/// Single precision, by bits 0-5.
constexpr std::array<Entry, 64> cop1_s{{
    /*  0 */ RUN(ADD_S), RUN(SUB_S), RUN(MUL_S), RUN(DIV_S), STOP(SQRT_S), STOP(ABS_S), RUN(MOV_S), RUN(NEG_S),
    /*  8 */ STOP(ROUND_L_S), STOP(TRUNC_L_S), STOP(CEIL_L_S), STOP(FLOOR_L_S), STOP(ROUND_W_S), STOP(TRUNC_W_S), STOP(CEIL_W_S), STOP(FLOOR_W_S),
    /* 16 */ NONE, STOP(MOVCF_S), STOP(MOVZ_S), STOP(MOVN_S), NONE, STOP(RECIP_S), STOP(RSQRT_S), NONE,
    /* 24 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 32 */ NONE, STOP(CVT_D_S), NONE, NONE, RUN(CVT_W_S), STOP(CVT_L_S), NONE, NONE,
    /* 40 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 48 */ STOP(C_F_S), STOP(C_UN_S), RUN(C_EQ_S), STOP(C_UEQ_S), RUN(C_OLT_S), STOP(C_ULT_S), STOP(C_OLE_S), STOP(C_ULE_S),
    /* 56 */ STOP(C_SF_S), STOP(C_NGLE_S), STOP(C_SEQ_S), STOP(C_NGL_S), STOP(C_LT_S), STOP(C_NGE_S), STOP(C_LE_S), STOP(C_NGT_S),
}};

/// Double precision, by bits 0-5: there is none.
constexpr std::array<Entry, 64> cop1_d{{
    /*  0 */ STOP(ADD_D), STOP(SUB_D), STOP(MUL_D), STOP(DIV_D), STOP(SQRT_D), STOP(ABS_D), STOP(MOV_D), STOP(NEG_D),
    /*  8 */ STOP(ROUND_L_D), STOP(TRUNC_L_D), STOP(CEIL_L_D), STOP(FLOOR_L_D), STOP(ROUND_W_D), STOP(TRUNC_W_D), STOP(CEIL_W_D), STOP(FLOOR_W_D),
    /* 16 */ NONE, STOP(MOVCF_D), STOP(MOVZ_D), STOP(MOVN_D), NONE, STOP(RECIP_D), STOP(RSQRT_D), NONE,
    /* 24 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 32 */ STOP(CVT_S_D), NONE, NONE, NONE, STOP(CVT_W_D), STOP(CVT_L_D), NONE, NONE,
    /* 40 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 48 */ STOP(C_F_D), STOP(C_UN_D), STOP(C_EQ_D), STOP(C_UEQ_D), STOP(C_OLT_D), STOP(C_ULT_D), STOP(C_OLE_D), STOP(C_ULE_D),
    /* 56 */ STOP(C_SF_D), STOP(C_NGLE_D), STOP(C_SEQ_D), STOP(C_NGL_D), STOP(C_LT_D), STOP(C_NGE_D), STOP(C_LE_D), STOP(C_NGT_D),
}};

/// Conversions from integers, by bits 0-5.
constexpr std::array<Entry, 64> cop1_W_L{{
    /*  0 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /*  8 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 16 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 24 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 32 */ RUN(CVT_S), STOP(CVT_D), NONE, NONE, NONE, NONE, NONE, NONE,
    /* 40 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 48 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    /* 56 */ NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
}};

// clang-format on
#undef RUN
#undef STOP
#undef NONE

}  // namespace

constexpr std::array<Handler, 64> normal_opc = handlersOf(normal);
constexpr std::array<Handler, 64> special_opc = handlersOf(special);
constexpr std::array<Handler, 32> regimm_opc = handlersOf(regimm);
constexpr std::array<Handler, 32> cop0_opc = handlersOf(cop0);
constexpr std::array<Handler, 64> cop0c0_opc = handlersOf(cop0c0);
constexpr std::array<Handler, 64> special2_opc = handlersOf(special2);
constexpr std::array<Handler, 32> cop1_opc = handlersOf(cop1);
constexpr std::array<Handler, 4> cop1_bc1_opc = handlersOf(cop1_bc1);
constexpr std::array<Handler, 64> cop1_s_opc = handlersOf(cop1_s);
constexpr std::array<Handler, 64> cop1_d_opc = handlersOf(cop1_d);
constexpr std::array<Handler, 64> cop1_W_L_opc = handlersOf(cop1_W_L);

constexpr std::array<const char*, 64> debug_normal_opc = namesOf(normal);
constexpr std::array<const char*, 64> debug_special_opc = namesOf(special);
constexpr std::array<const char*, 32> debug_regimm_opc = namesOf(regimm);
constexpr std::array<const char*, 32> debug_cop0_opc = namesOf(cop0);
constexpr std::array<const char*, 64> debug_cop0c0_opc = namesOf(cop0c0);
constexpr std::array<const char*, 64> debug_special2_opc = namesOf(special2);
constexpr std::array<const char*, 32> debug_cop1_opc = namesOf(cop1);
constexpr std::array<const char*, 4> debug_cop1_bc1_opc = namesOf(cop1_bc1);
constexpr std::array<const char*, 64> debug_cop1_s_opc = namesOf(cop1_s);
constexpr std::array<const char*, 64> debug_cop1_d_opc = namesOf(cop1_d);
constexpr std::array<const char*, 64> debug_cop1_W_L_opc = namesOf(cop1_W_L);

namespace {

/// What the tables hold for a word, dispatchers resolved.
Entry entryOf(u32 word) {
    const auto entry = [](const auto& handlers, const auto& names, u32 index) {
        return Entry{handlers[index], names[index]};
    };
    switch (majorOpcode(word)) {
    case 0:
        return entry(special_opc, debug_special_opc, functionCode(word));
    case 1:
        return entry(regimm_opc, debug_regimm_opc, regimmCode(word));
    case 16:
        return bit(word, 25) != 0 ? entry(cop0c0_opc, debug_cop0c0_opc, functionCode(word))
                                  : entry(cop0_opc, debug_cop0_opc, coprocessorCode(word));
    case 17:
        switch (coprocessorCode(word)) {
        case 8:
            return entry(cop1_bc1_opc, debug_cop1_bc1_opc, conditionBranchCode(word));
        case 16:
            return entry(cop1_s_opc, debug_cop1_s_opc, functionCode(word));
        case 17:
            return entry(cop1_d_opc, debug_cop1_d_opc, functionCode(word));
        case 20:
            return entry(cop1_W_L_opc, debug_cop1_W_L_opc, functionCode(word));
        default:
            return entry(cop1_opc, debug_cop1_opc, coprocessorCode(word));
        }
    case 28:
        return entry(special2_opc, debug_special2_opc, functionCode(word));
    default:
        return entry(normal_opc, debug_normal_opc, majorOpcode(word));
    }
}

}  // namespace

Handler handlerOf(u32 word) { return entryOf(word).handler; }

}  // namespace tarn::r5900

namespace tarn {

const char* mnemonicOf(u32 word) { return r5900::entryOf(word).name; }

bool isImplemented(u32 word) { return r5900::handlerOf(word) != r5900::NI; }

}  // namespace tarn
