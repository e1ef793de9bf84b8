// The operations under test: each function is one instruction (or the few that make its effect visible)
// with its operands in a0 and a1 and its result in v0.
#pragma once

#include "tarn_guest.h"

typedef u64 Operation(u64 a, u64 b);

/// A name to show, operands, and the expected result.
typedef struct {
    const char* name;
    Operation* operation;
    u64 a;
    u64 b;
    u64 expected;
} Case;

/// The tables of cases, each terminated by a case without a name.
extern const Case integerCases[];
extern const Case branchCases[];
extern const Case memoryCases[];  ///< operand a is replaced by the address of a patterned block
extern const Case floatCases[];
extern const Case libraryCases[];

// Registers only. The digits of immediates and shifts are part of the name.
extern Operation opAdd, opAddu, opSub, opSubu, opAnd, opOr, opXor, opSlt, opSltu, opDaddu, opDsubu;
extern Operation opMovz, opMovn, opSllv, opSrlv, opSrav;
extern Operation opAddi1, opAddiuM1, opSltiM5, opSltiuM1, opAndiF00F, opOri8001, opXoriFFFF, opLui8000;
extern Operation opDaddiuM2;
extern Operation opSll4, opSrl1, opSra4, opDsll8, opDsrl8, opDsll32by1, opDsrl32by1, opDsra32by4;
extern Operation opMult, opMultHigh, opMultIntoR0, opMult1, opDmultu, opDmultuHigh;
extern Operation opDivLow, opDivHigh, opDivuLow, opDivuHigh;
extern Operation opR0, opStatus, opPrid, opInterrupts, opSyncCache, opSyscall;

// 1: taken, the delay slot ran; 3: not taken, it ran as the next instruction; 2: not taken, skipped.
extern Operation opBeq, opBne, opBlez, opBgtz, opBltz, opBgez, opBeql, opBnel, opBlezl, opBltzl, opBgezl;
extern Operation opJ, opJal, opJalr, opJr;

// a is an address, b a value to store.
extern Operation opLb, opLbu, opLh, opLhu, opLw, opLwu, opLd, opLdl, opLdr, opLq, opLwl, opLwr;
extern Operation opSb, opSh, opSw, opSd, opSdl, opSdr, opSwl, opSwr, opLwc1;

// a and b are bit patterns of floats, as are results unless they are flags or integers.
extern Operation opAddS, opSubS, opMulS, opDivS, opMovS, opNegS, opCvtWS, opToInteger, opCvtS, opMtc1Mfc1;
extern Operation opCEqS, opCOltS, opBc1f, opBc1t, opBc1tl;
