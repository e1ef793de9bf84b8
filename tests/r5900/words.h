// Owns the encoding of instruction words for the tests of the interpreter.
#pragma once

#include "base/types.h"

namespace tarn::test {

/// Register numbers of the names that the trace uses.
enum : u32 { r0 = 0, at = 1, v0 = 2, v1 = 3, a0 = 4, t0 = 8, t1 = 9, t2 = 10, t3 = 11, sp = 29, ra = 31 };

constexpr u32 immediate(u32 major, u32 rs, u32 rt, u32 low) {
    return major << 26 | rs << 21 | rt << 16 | (low & 0xFFFF);
}
constexpr u32 special(u32 function, u32 rs, u32 rt, u32 rd, u32 sa = 0) {
    return rs << 21 | rt << 16 | rd << 11 | sa << 6 | function;
}
constexpr u32 regimm(u32 code, u32 rs, u32 offset) { return immediate(1, rs, code, offset); }
constexpr u32 jump(u32 major, u32 index) { return major << 26 | index; }
constexpr u32 single(u32 function, u32 ft, u32 fs, u32 fd) {
    return 17U << 26 | 16U << 21 | ft << 16 | fs << 11 | fd << 6 | function;
}
constexpr u32 coprocessor1(u32 code, u32 rt, u32 low) { return immediate(17, code, rt, low); }

}  // namespace tarn::test
