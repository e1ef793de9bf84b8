// Encoding of instruction words and of programs, for the interpreter's tests.
#pragma once

#include "memory/memory.h"
#include "r5900/gpr.h"
#include "r5900/interpreter.h"
#include "support/machine_test.h"

#include <bit>
#include <cstring>
#include <vector>

namespace tarn::test {

/// Register numbers of the names that the trace uses.
enum : u8 { r0 = 0, v0 = 2, a0 = 4, t0 = 8, t1 = 9, t2 = 10, sp = 29, ra = 31 };

constexpr u32 immediate(u32 major, u32 rs, u32 rt, u32 low) {
    return major << 26 | rs << 21 | rt << 16 | (low & 0xFFFF);
}
constexpr u32 special(u32 function, u32 rs, u32 rt, u32 rd, u32 sa = 0) {
    return rs << 21 | rt << 16 | rd << 11 | sa << 6 | function;
}
constexpr u32 regimm(u32 code, u32 rs, u32 offset) { return immediate(1, rs, code, offset); }
constexpr u32 jump(u32 major, u32 index) { return major << 26 | index; }
constexpr u32 coprocessor1(u32 code, u32 rt, u32 low) { return immediate(17, code, rt, low); }
constexpr u32 single(u32 function, u32 ft, u32 fs, u32 fd) {
    return coprocessor1(16, ft, fs << 11 | fd << 6 | function);
}

constexpr u64 programStart = 0x00100000;

inline void setProgram(const std::vector<u32>& words) {
    std::memcpy(MipsMemory + programStart, words.data(), words.size() * sizeof(u32));
    MipsCpu.PC = programStart;
}

}  // namespace tarn::test
