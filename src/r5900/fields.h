// Decoding of instruction words: one record of operands per format, with the names of the fields.
#pragma once

#include "base/bits.h"

namespace tarn::r5900 {

/// A field of up to 8 bits of an instruction word.
constexpr u8 field(u32 word, unsigned first, unsigned count) {
    return static_cast<u8>(bits(word, first, count));
}

/// A general-purpose register operand, stored as its offset in MipsCpu.GPR in doublewords: x86 addressing
/// scales by 8 at no cost, but not by 16.
struct Gpr {
    u8 doublewords;
    constexpr u8 number() const { return doublewords / 2; }
    static constexpr Gpr numbered(u8 number) { return {static_cast<u8>(number * 2)}; }
};

/// The three register numbers in their usual positions, and the 16-bit immediate. Floating-point and memory
/// formats use other names for the same bits.
constexpr u8 bits21To25(u32 word) { return field(word, 21, 5); }
constexpr u8 bits16To20(u32 word) { return field(word, 16, 5); }
constexpr u8 bits11To15(u32 word) { return field(word, 11, 5); }
constexpr u8 bits6To10(u32 word) { return field(word, 6, 5); }
constexpr u16 bits0To15(u32 word) { return static_cast<u16>(word); }

constexpr Gpr gpr21To25(u32 word) { return Gpr::numbered(bits21To25(word)); }
constexpr Gpr gpr16To20(u32 word) { return Gpr::numbered(bits16To20(word)); }
constexpr Gpr gpr11To15(u32 word) { return Gpr::numbered(bits11To15(word)); }

/// The fields that select an entry of the dispatch tables.
constexpr u32 majorOpcode(u32 word) { return bits(word, 26, 6); }
constexpr u32 functionCode(u32 word) { return bits(word, 0, 6); }
constexpr u32 regimmCode(u32 word) { return bits(word, 16, 5); }
constexpr u32 coprocessorCode(u32 word) { return bits(word, 21, 5); }
constexpr u32 conditionBranchCode(u32 word) { return bits(word, 16, 2); }

/// The format without operands.
struct NoFields {
    static constexpr NoFields from(u32) { return {}; }
};

// Immediates and offsets are raw, as in trace lines; the semantics extend them. `destination` is the result
// register of the format, even if the instruction does not write it.

struct ImmediateFields {
    Gpr rs, rt;
    u16 imm;
    static constexpr ImmediateFields from(u32 word) {
        return {gpr21To25(word), gpr16To20(word), bits0To15(word)};
    }
    constexpr Gpr destination() const { return rt; }
};

struct RegisterFields {
    Gpr rs, rt, rd;
    static constexpr RegisterFields from(u32 word) {
        return {gpr21To25(word), gpr16To20(word), gpr11To15(word)};
    }
    constexpr Gpr destination() const { return rd; }
};

struct ShiftFields {
    Gpr rt, rd;
    u8 sa;
    static constexpr ShiftFields from(u32 word) {
        return {gpr16To20(word), gpr11To15(word), bits6To10(word)};
    }
    constexpr Gpr destination() const { return rd; }
};

struct MemoryFields {
    Gpr base, rt;
    u16 offset;
    static constexpr MemoryFields from(u32 word) {
        return {gpr21To25(word), gpr16To20(word), bits0To15(word)};
    }
    constexpr Gpr destination() const { return rt; }
};

/// A branch that compares two registers.
struct BranchFields {
    Gpr rs, rt;
    u16 offset;
    static constexpr BranchFields from(u32 word) {
        return {gpr21To25(word), gpr16To20(word), bits0To15(word)};
    }
};

/// A branch that compares one register with zero.
struct ZeroBranchFields {
    Gpr rs;
    u16 offset;
    static constexpr ZeroBranchFields from(u32 word) { return {gpr21To25(word), bits0To15(word)}; }
};

struct JumpFields {
    u32 instr_index;
    static constexpr JumpFields from(u32 word) { return {bits(word, 0, 26)}; }
};

struct Cop0Fields {
    Gpr rt;
    u8 rd, sel;
    static constexpr Cop0Fields from(u32 word) {
        return {gpr16To20(word), bits11To15(word), field(word, 0, 3)};
    }
    constexpr Gpr destination() const { return rt; }
};

struct FpuFields {
    u8 ft, fs, fd;
    static constexpr FpuFields from(u32 word) {
        return {bits16To20(word), bits11To15(word), bits6To10(word)};
    }
};

/// A move between an integer and a floating-point register.
struct FpuMoveFields {
    Gpr rt;
    u8 fs;
    static constexpr FpuMoveFields from(u32 word) { return {gpr16To20(word), bits11To15(word)}; }
    constexpr Gpr destination() const { return rt; }
};

struct FpuMemoryFields {
    Gpr base;
    u8 ft;
    u16 offset;
    static constexpr FpuMemoryFields from(u32 word) {
        return {gpr21To25(word), bits16To20(word), bits0To15(word)};
    }
};

struct FpuCompareFields {
    u8 ft, fs, cc;
    static constexpr FpuCompareFields from(u32 word) {
        return {bits16To20(word), bits11To15(word), field(word, 8, 3)};
    }
};

struct FpuBranchFields {
    u8 ccb;
    u16 offset;
    static constexpr FpuBranchFields from(u32 word) { return {field(word, 18, 3), bits0To15(word)}; }
};

}  // namespace tarn::r5900
