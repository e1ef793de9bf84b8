// The parallel instructions, each held against a calculation on single lanes of 128-bit integers, for random
// operands full of extremes.
#include "r5900/complete_machine.h"

#include <algorithm>
#include <functional>
#include <random>
#include <string_view>

namespace tarn::test {
namespace {

using Quad = unsigned __int128;

/// What the instructions read and write.
struct State {
    Quad rs, rt, rd, hi, lo;
    u64 sa;
    bool operator==(const State&) const = default;
};

/// Lane `i` of `width` bits: read with its sign, read without, written.
s64 lane(Quad value, int width, int i) {
    return static_cast<s64>(static_cast<u64>(value >> (i * width)) << (64 - width)) >> (64 - width);
}
u64 plain(Quad value, int width, int i) {
    return static_cast<u64>(lane(value, width, i)) & (~u64{0} >> (64 - width));
}
void put(Quad& value, int width, int i, s64 number) {
    const Quad mask = Quad{~u64{0} >> (64 - width)} << (i * width);
    value = (value & ~mask) | ((static_cast<Quad>(number) << (i * width)) & mask);
}
s64 clamped(s64 value, int width) {
    const s64 limit = s64{1} << (width - 1);
    return std::clamp(value, -limit, limit - 1);
}
s64 clampedUnsigned(s64 value, int width) { return std::clamp(value, s64{0}, (s64{1} << width) - 1); }

// Instructions of the same lanes, for one, two or three widths: words, halfwords at code + 4, bytes at code
// + 8.
struct Lanewise {
    u32 group, code;
    int widths;
    bool isSigned;
    s64 (*expected)(s64 left, s64 right, int width);
};
enum : u32 { mmi0 = 8, mmi1 = 40, mmi2 = 9, mmi3 = 41 };

// clang-format off
const Lanewise lanewise[] = {
    {mmi0, 0, 3, true, [](s64 a, s64 b, int) { return a + b; }},
    {mmi0, 1, 3, true, [](s64 a, s64 b, int) { return a - b; }},
    {mmi0, 2, 3, true, [](s64 a, s64 b, int) { return a > b ? s64{-1} : 0; }},
    {mmi0, 3, 2, true, [](s64 a, s64 b, int) { return a > b ? a : b; }},
    {mmi0, 16, 3, true, [](s64 a, s64 b, int w) { return clamped(a + b, w); }},
    {mmi0, 17, 3, true, [](s64 a, s64 b, int w) { return clamped(a - b, w); }},
    {mmi1, 1, 2, true, [](s64, s64 b, int w) { return clamped(b < 0 ? -b : b, w); }},
    {mmi1, 2, 3, true, [](s64 a, s64 b, int) { return a == b ? s64{-1} : 0; }},
    {mmi1, 3, 2, true, [](s64 a, s64 b, int) { return a < b ? a : b; }},
    {mmi1, 16, 3, false, [](s64 a, s64 b, int w) { return clampedUnsigned(a + b, w); }},
    {mmi1, 17, 3, false, [](s64 a, s64 b, int w) { return clampedUnsigned(a - b, w); }},
    {mmi2, 18, 1, true, [](s64 a, s64 b, int) { return a & b; }},
    {mmi2, 19, 1, true, [](s64 a, s64 b, int) { return a ^ b; }},
    {mmi3, 18, 1, true, [](s64 a, s64 b, int) { return a | b; }},
    {mmi3, 19, 1, true, [](s64 a, s64 b, int) { return ~(a | b); }},
};

// Parts of the calculations for all others.

/// The 64-bit number that the even words of HI and LO make.
s64 number(const State& s, int half) {
    return static_cast<s64>(plain(s.hi, 32, half * 2) << 32 | plain(s.lo, 32, half * 2));
}
void setNumber(State& s, int half, s64 value) {
    put(s.lo, 64, half, lane(static_cast<Quad>(value), 32, 0));
    put(s.hi, 64, half, value >> 32);
    put(s.rd, 64, half, value);
}
void words(State& s, bool isSigned, int factor, int keep) {
    for (int half = 0; half < 2; ++half) {
        const auto operand = [&](Quad q) {
            return isSigned ? static_cast<u64>(lane(q, 32, half * 2)) : plain(q, 32, half * 2);
        };
        const u64 product = operand(s.rs) * operand(s.rt) * static_cast<u64>(s64{factor});
        setNumber(s, half, static_cast<s64>(static_cast<u64>(number(s, half) * keep) + product));
    }
}
/// Where product i of halfwords goes.
Quad& wordOf(State& s, int product) { return product / 2 % 2 == 0 ? s.lo : s.hi; }
void halfwords(State& s, int factor, int keep) {
    for (int i = 0; i < 8; ++i) {
        const int to = i / 4 * 2 + i % 2;
        const s64 product = lane(s.rs, 16, i) * lane(s.rt, 16, i) * factor;
        put(wordOf(s, i), 32, to, lane(wordOf(s, i), 32, to) * keep + product);
        put(s.rd, 32, i / 2, i % 2 == 0 ? lane(wordOf(s, i), 32, to) : lane(s.rd, 32, i / 2));
    }
}
void neighbours(State& s, int factor) {
    for (int i = 0; i < 8; i += 2) {
        const s64 sum = lane(s.rs, 16, i + 1) * lane(s.rt, 16, i + 1) + factor * lane(s.rs, 16, i) * lane(s.rt, 16, i);
        put(wordOf(s, i), 32, i / 4 * 2, sum);
        put(s.rd, 32, i / 2, sum);
    }
}
void quotient(State& s, int width, int i, s64 dividend, s64 divisor) {
    put(s.lo, width, i, lane(static_cast<Quad>(divisor != 0 ? dividend / divisor : dividend < 0 ? 1 : -1), 32, 0));
    put(s.hi, width, i, lane(static_cast<Quad>(divisor != 0 ? dividend % divisor : dividend), 32, 0));
}
void shiftWords(State& s, s64 (*shift)(s64 value, int amount)) {
    for (int half = 0; half < 2; ++half) {
        const auto amount = static_cast<int>(plain(s.rs, 32, half * 2) % 32);
        put(s.rd, 64, half, lane(static_cast<Quad>(shift(lane(s.rt, 32, half * 2), amount)), 32, 0));
    }
}
/// A shift by an immediate amount, 21 here: 5 for halfwords.
void shift(State& s, int width, s64 (*of)(s64 value, int amount)) {
    for (int i = 0; i < 128 / width; ++i) {
        put(s.rd, width, i, of(lane(s.rt, width, i), 21 % width));
    }
}
s64 left(s64 value, int amount) { return value << amount; }
s64 rightOfWord(s64 value, int amount) { return static_cast<s64>((static_cast<u64>(value) & 0xFFFFFFFF) >> amount); }
s64 rightOfHalfword(s64 value, int amount) { return static_cast<s64>((static_cast<u64>(value) & 0xFFFF) >> amount); }
s64 rightArithmetic(s64 value, int amount) { return value >> amount; }
s64 signBits(s64 word) {
    s64 count = 0;
    while (count < 31 && (word >> (30 - count) & 1) == (word >> 31 & 1)) {
        ++count;
    }
    return count;
}
void colours(State& s, bool extends) {
    constexpr int narrow[] = {0, 5, 10, 15}, wide[] = {3, 11, 19, 31};
    for (int i = 0; i < 4; ++i) {
        const u64 from = plain(s.rt, 32, i);
        u64 colour = 0;
        for (int part = 0; part < 4; ++part) {
            const u64 bits = from >> (extends ? narrow : wide)[part] & (part < 3 ? 31 : 1);
            colour |= bits << (extends ? wide : narrow)[part];
        }
        put(s.rd, 32, i, static_cast<s64>(colour));
    }
}

/// Instructions that move lanes. Each lane of rd is named by a digit: 0 and up for the lanes of rt, g and up for those
/// of rs; with PMFHL of LO and HI.
struct Move {
    u32 group, code;
    int width;
    std::string_view lanes;
};
enum : u32 { pmfhl = 48 };
const Move moves[] = {
    {mmi0, 18, 32, "0g1h"}, {mmi0, 22, 16, "0g1h2i3j"}, {mmi0, 26, 8, "0g1h2i3j4k5l6m7n"},
    {mmi1, 18, 32, "2i3j"}, {mmi1, 22, 16, "4k5l6m7n"}, {mmi1, 26, 8, "8o9paqbrcsdteufv"},
    {mmi0, 19, 32, "02gi"}, {mmi0, 23, 16, "0246gikm"}, {mmi0, 27, 8, "02468acegikmoqsu"},
    {mmi2, 10, 16, "0k1l2m3n"}, {mmi3, 10, 16, "0g2i4k6m"}, {mmi2, 14, 64, "0g"}, {mmi3, 14, 64, "h1"},
    {mmi2, 26, 16, "21036547"}, {mmi2, 27, 16, "32107654"}, {mmi2, 30, 32, "2103"}, {mmi2, 31, 32, "1203"},
    {mmi3, 26, 16, "02134657"}, {mmi3, 27, 16, "00004444"}, {mmi3, 30, 32, "0213"},
    {pmfhl, 0, 32, "0g2i"}, {pmfhl, 1, 32, "1h3j"}, {pmfhl, 3, 16, "02gi46km"},
};

struct Single {
    u32 word;  // without registers
    void (*apply)(State& s);
};
constexpr u32 multimedia(u32 group, u32 code) { return 28u << 26 | code << 6 | group; }

const Single singles[] = {
    {multimedia(mmi0, 30), [](State& s) { colours(s, true); }}, {multimedia(mmi0, 31), [](State& s) { colours(s, false); }},
    {multimedia(mmi1, 4), [](State& s) { for (int i = 0; i < 8; ++i) put(s.rd, 16, i, lane(s.rs, 16, i) + (i < 4 ? -1 : 1) * lane(s.rt, 16, i)); }},
    {multimedia(mmi1, 27), [](State& s) { for (int i = 0; i < 16; ++i) { const int from = i + static_cast<int>(s.sa); put(s.rd, 8, i, lane(from < 16 ? s.rt : s.rs, 8, from % 16)); } }},
    {multimedia(mmi2, 0), [](State& s) { words(s, true, 1, 1); }}, {multimedia(mmi3, 0), [](State& s) { words(s, false, 1, 1); }},
    {multimedia(mmi2, 4), [](State& s) { words(s, true, -1, 1); }},
    {multimedia(mmi2, 12), [](State& s) { words(s, true, 1, 0); }}, {multimedia(mmi3, 12), [](State& s) { words(s, false, 1, 0); }},
    {multimedia(mmi2, 16), [](State& s) { halfwords(s, 1, 1); }}, {multimedia(mmi2, 20), [](State& s) { halfwords(s, -1, 1); }},
    {multimedia(mmi2, 28), [](State& s) { halfwords(s, 1, 0); }},
    {multimedia(mmi2, 17), [](State& s) { neighbours(s, 1); }}, {multimedia(mmi2, 21), [](State& s) { neighbours(s, -1); }},
    {multimedia(mmi2, 13), [](State& s) { for (int half = 0; half < 2; ++half) quotient(s, 64, half, lane(s.rs, 32, half * 2), lane(s.rt, 32, half * 2)); }},
    {multimedia(mmi3, 13), [](State& s) { for (int half = 0; half < 2; ++half) quotient(s, 64, half, static_cast<s64>(plain(s.rs, 32, half * 2)), static_cast<s64>(plain(s.rt, 32, half * 2))); }},
    {multimedia(mmi2, 29), [](State& s) { for (int i = 0; i < 4; ++i) quotient(s, 32, i, lane(s.rs, 32, i), lane(s.rt, 16, 0)); }},
    {multimedia(mmi2, 2), [](State& s) { shiftWords(s, left); }}, {multimedia(mmi2, 3), [](State& s) { shiftWords(s, rightOfWord); }},
    {multimedia(mmi3, 3), [](State& s) { shiftWords(s, rightArithmetic); }},
    {multimedia(52, 21), [](State& s) { shift(s, 16, left); }}, {multimedia(60, 21), [](State& s) { shift(s, 32, left); }},
    {multimedia(54, 21), [](State& s) { shift(s, 16, rightOfHalfword); }}, {multimedia(62, 21), [](State& s) { shift(s, 32, rightOfWord); }},
    {multimedia(55, 21), [](State& s) { shift(s, 16, rightArithmetic); }}, {multimedia(63, 21), [](State& s) { shift(s, 32, rightArithmetic); }},
    {multimedia(mmi2, 8), [](State& s) { s.rd = s.hi; }}, {multimedia(mmi2, 9), [](State& s) { s.rd = s.lo; }},
    {multimedia(mmi3, 8), [](State& s) { s.hi = s.rs; }}, {multimedia(mmi3, 9), [](State& s) { s.lo = s.rs; }},
    {multimedia(4, 0), [](State& s) { for (int i = 0; i < 2; ++i) put(s.rd, 32, i, signBits(lane(s.rs, 32, i))); }},
    {multimedia(48, 2), [](State& s) { for (int half = 0; half < 2; ++half) put(s.rd, 64, half, clamped(number(s, half), 32)); }},
    {multimedia(48, 4), [](State& s) { for (int i = 0; i < 8; ++i) put(s.rd, 16, i, clamped(lane(wordOf(s, i), 32, i / 4 * 2 + i % 2), 16)); }},
    {multimedia(49, 0), [](State& s) { for (int i = 0; i < 4; ++i) put(i % 2 == 0 ? s.lo : s.hi, 32, i / 2 * 2, lane(s.rs, 32, i)); }},
};
// clang-format on

/// 128 bits of bytes that are random, or often an extreme of one of the widths.
Quad randomQuad(std::mt19937_64& random) {
    constexpr u64 extremes[] = {0,
                                ~u64{0},
                                0x8000000000000000,
                                0x7FFFFFFF7FFFFFFF,
                                0x8000000080000000,
                                0x80007FFF80007FFF,
                                0x7F807F807F807F80,
                                1,
                                0x0001000100010001};
    const auto doubleword = [&] {
        const u64 choice = random();
        return choice % 3 == 0 ? extremes[choice / 3 % std::size(extremes)] : random();
    };
    Quad value = Quad{doubleword()} << 64 | doubleword();
    const u64 mask = random();  // some of the lanes from a second value
    for (int i = 0; mask % 2 == 0 && i < 8; ++i) {
        if (mask >> i & 2) {
            put(value, 16, i, static_cast<s64>(doubleword()));
        }
    }
    return value;
}

class Multimedia : public CompleteTest {
  protected:
    static constexpr GuestValue guest(Quad value) {
        return {static_cast<u64>(value), static_cast<u64>(value >> 64)};
    }
    static constexpr Quad quad(GuestValue value) { return Quad{value.high} << 64 | value.low; }

    void hold(u32 word, const std::function<void(State&)>& apply) {
        for (int round = 0; round < 200; ++round) {
            State s{randomQuad(random), randomQuad(random), randomQuad(random),
                    randomQuad(random), randomQuad(random), random() % 16};
            if (round % 4 == 0) {
                s.rt = s.rs;
            }
            MipsCpu.GPR[8] = guest(s.rs);
            MipsCpu.GPR[9] = guest(s.rt);
            MipsCpu.GPR[10] = guest(s.rd);
            MipsCpu.HI = guest(s.hi);
            MipsCpu.LO = guest(s.lo);
            MipsCpu.SA = s.sa;
            const State before = s;
            execute(word | 8 << 21 | 9 << 16 | 10 << 11);
            apply(s);
            const State after{before.rs,        before.rt,        quad(MipsCpu.GPR[10]),
                              quad(MipsCpu.HI), quad(MipsCpu.LO), MipsCpu.SA};
            ASSERT_TRUE(after.rd == s.rd) << mnemonicOf(word) << " round " << round;
            ASSERT_TRUE(after.hi == s.hi && after.lo == s.lo) << mnemonicOf(word) << " round " << round;
        }
    }
    std::mt19937_64 random{1};
};

TEST_F(Multimedia, LanesAreComputedEachForItself) {
    for (const Lanewise& row : lanewise) {
        for (int i = 0; i < row.widths; ++i) {
            const int width = 32 >> i;
            hold(multimedia(row.group, row.code + 4 * static_cast<u32>(i)), [&](State& s) {
                for (int at = 0; at < 128 / width; ++at) {
                    const auto operand = [&](Quad q) {
                        return row.isSigned ? lane(q, width, at) : static_cast<s64>(plain(q, width, at));
                    };
                    put(s.rd, width, at, row.expected(operand(s.rs), operand(s.rt), width));
                }
            });
        }
    }
}

TEST_F(Multimedia, LanesAreCombinedAndMoved) {
    for (const Single& row : singles) {
        hold(row.word, row.apply);
    }
    for (const auto& move : moves) {
        hold(multimedia(move.group, move.code), [&](State& s) {
            const auto& [group, code, width, lanes] = move;
            const Quad first = group == pmfhl ? s.lo : s.rt, second = group == pmfhl ? s.hi : s.rs;
            for (int i = 0; i < 128 / width; ++i) {
                const char from = lanes[static_cast<std::size_t>(i)];
                put(s.rd, width, i,
                    from >= 'g' ? lane(second, width, from - 'g')
                                : lane(first, width, from <= '9' ? from - '0' : from - 'a' + 10));
            }
        });
    }
}

}  // namespace
}  // namespace tarn::test
