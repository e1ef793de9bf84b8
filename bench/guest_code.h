// The encoding of the few MIPS instructions that the measured programs consist of.
#pragma once

#include "base/types.h"

namespace tarn::bench {

enum Gpr : u32 { zero = 0, v0 = 2, v1 = 3, a0 = 4, a1 = 5, t0 = 8, t1, t2, t3, t4, t5, t6, t7 };

constexpr u32 immediateWord(u32 major, u32 rs, u32 rt, s32 immediate) {
    return major << 26 | rs << 21 | rt << 16 | (static_cast<u32>(immediate) & 0xFFFF);
}
constexpr u32 registerWord(u32 function, u32 rs, u32 rt, u32 rd, u32 sa = 0) {
    return rs << 21 | rt << 16 | rd << 11 | sa << 6 | function;
}
constexpr u32 floatWord(u32 function, u32 fd, u32 fs, u32 ft) {
    return 17U << 26 | 16U << 21 | ft << 16 | fs << 11 | fd << 6 | function;
}

constexpr u32 addiu(u32 rt, u32 rs, s32 immediate) { return immediateWord(9, rs, rt, immediate); }
constexpr u32 andi(u32 rt, u32 rs, s32 immediate) { return immediateWord(12, rs, rt, immediate); }
constexpr u32 ori(u32 rt, u32 rs, s32 immediate) { return immediateWord(13, rs, rt, immediate); }
constexpr u32 lui(u32 rt, s32 immediate) { return immediateWord(15, 0, rt, immediate); }
constexpr u32 lw(u32 rt, s32 offset, u32 base) { return immediateWord(35, base, rt, offset); }
constexpr u32 lbu(u32 rt, s32 offset, u32 base) { return immediateWord(36, base, rt, offset); }
constexpr u32 lhu(u32 rt, s32 offset, u32 base) { return immediateWord(37, base, rt, offset); }
constexpr u32 sh(u32 rt, s32 offset, u32 base) { return immediateWord(41, base, rt, offset); }
constexpr u32 sw(u32 rt, s32 offset, u32 base) { return immediateWord(43, base, rt, offset); }
constexpr u32 sll(u32 rd, u32 rt, u32 sa) { return registerWord(0, 0, rt, rd, sa); }
constexpr u32 srl(u32 rd, u32 rt, u32 sa) { return registerWord(2, 0, rt, rd, sa); }
constexpr u32 addu(u32 rd, u32 rs, u32 rt) { return registerWord(33, rs, rt, rd); }
constexpr u32 or_(u32 rd, u32 rs, u32 rt) { return registerWord(37, rs, rt, rd); }
constexpr u32 xor_(u32 rd, u32 rs, u32 rt) { return registerWord(38, rs, rt, rd); }
constexpr u32 slt(u32 rd, u32 rs, u32 rt) { return registerWord(42, rs, rt, rd); }
constexpr u32 syscall() { return registerWord(12, 0, 0, 0); }
constexpr u32 nop() { return 0; }

// Branches: the displacement counts words from the delay slot.
constexpr u32 beq(u32 rs, u32 rt, s32 displacement) { return immediateWord(4, rs, rt, displacement); }
constexpr u32 bne(u32 rs, u32 rt, s32 displacement) { return immediateWord(5, rs, rt, displacement); }
constexpr u32 bc1f(s32 displacement) { return immediateWord(17, 8, 0, displacement); }

constexpr u32 mtc1(u32 rt, u32 fs) { return immediateWord(17, 4, rt, static_cast<s32>(fs << 11)); }
constexpr u32 addS(u32 fd, u32 fs, u32 ft) { return floatWord(0, fd, fs, ft); }
constexpr u32 subS(u32 fd, u32 fs, u32 ft) { return floatWord(1, fd, fs, ft); }
constexpr u32 mulS(u32 fd, u32 fs, u32 ft) { return floatWord(2, fd, fs, ft); }
constexpr u32 movS(u32 fd, u32 fs) { return floatWord(6, fd, fs, 0); }
constexpr u32 cOltS(u32 fs, u32 ft) { return floatWord(52, 0, fs, ft); }

}  // namespace tarn::bench
