// The instruction trace: the line of each instruction, and its output.
#pragma once

#include "base/types.h"
#include "machine/settings.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tarn {

/// One line of the register dump.
inline std::array<char, 100> debugTempOpcodeText{};

namespace r5900 {

/// Whether instructions are traced.
inline bool tracing() { return Settings.debug_op == 1; }

/// What a conversion of a trace line's format prints.
enum class Operand : u8 {
    // Names of registers.
    Rs,
    Rt,
    Rd,
    Fs,
    Ft,
    Fd,
    Cop0Register,
    // Numbers that fit an int.
    Sa,
    Sel,
    FtNumber,
    Cc,
    Ccb,
    // Doublewords; immediates and offsets are raw.
    Immediate,
    RsValue,
    FtImage,
    Target,
    JumpTarget,
};

/// The operands of a class of trace lines, in the order of their format.
struct TraceOperands {
    std::array<Operand, 4> list;
    std::size_t count;

    template <typename... Operands>
    constexpr TraceOperands(Operands... operands) : list{operands...}, count(sizeof...(operands)) {}
};

/// The letter of the conversion that prints an operand: s, d (also as x), or l for llx.
constexpr char conversionOf(Operand operand) {
    return operand < Operand::Sa ? 's' : operand < Operand::Immediate ? 'd' : 'l';
}

/// A format and its operands. A constant whose conversions do not match its operands does not compile.
struct TraceLine {
    const char* format = nullptr;  ///< null: the instruction writes no line
    std::array<Operand, 4> operands{};

    constexpr TraceLine() = default;
    constexpr TraceLine(const char* text, TraceOperands shown) : format(text), operands(shown.list) {
        std::size_t found = 0;
        for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(1)) {
            if (rest[0] == '%') {
                rest.remove_prefix(rest.find_first_not_of("%0123456789."));
                const char conversion = rest.starts_with("llx") ? 'l' : rest[0] == 'x' ? 'd' : rest[0];
                if (conversionOf(shown.list.at(found++)) != conversion) {
                    throw "a conversion of the format does not suit its operand";
                }
            }
        }
        if (found != shown.count) {
            throw "the format leaves operands out";
        }
    }
};

/// The trace line of an instruction word on the current processor, from the list of instructions.
const TraceLine& traceLineOf(u32 word);

/// An operand of an instruction word, with the current state of the machine: the name of a register, or a
/// number.
const char* nameOf(Operand operand, u32 word);
u64 numberOf(Operand operand, u32 word);

// Cold, so that they are not inlined: tracing is nearly always off.

/// Writes PC and the text to debugTempText.
[[gnu::cold]] void traceText(const char* text);
/// Writes PC and the trace line of an instruction word, if it has one, to debugTempText.
[[gnu::cold]] void traceLine(u32 word);

/// Send debugTempText to the trace observer, or else to the panes.
[[gnu::cold]] void beginTracedInstruction();
[[gnu::cold]] void showTakenBranch();
[[gnu::cold]] void showInstruction(u64 pc, u32 word);

inline constexpr TraceOperands noOperands;
inline constexpr TraceOperands rtRsImmediate{Operand::Rt, Operand::Rs, Operand::Immediate};
inline constexpr TraceOperands rtImmediate{Operand::Rt, Operand::Immediate};
inline constexpr TraceOperands rdRsRt{Operand::Rd, Operand::Rs, Operand::Rt};
inline constexpr TraceOperands rdRtRs{Operand::Rd, Operand::Rt, Operand::Rs};
inline constexpr TraceOperands rsRt{Operand::Rs, Operand::Rt};
inline constexpr TraceOperands rdOnly{Operand::Rd};
inline constexpr TraceOperands rsOnly{Operand::Rs};
inline constexpr TraceOperands rdRs{Operand::Rd, Operand::Rs};
inline constexpr TraceOperands rdRt{Operand::Rd, Operand::Rt};
inline constexpr TraceOperands rsImmediate{Operand::Rs, Operand::Immediate};
inline constexpr TraceOperands fdFt{Operand::Fd, Operand::Ft};
inline constexpr TraceOperands fsFt{Operand::Fs, Operand::Ft};
inline constexpr TraceOperands rdRtSa{Operand::Rd, Operand::Rt, Operand::Sa};
inline constexpr TraceOperands rtOffsetBase{Operand::Rt, Operand::Immediate, Operand::Rs};
inline constexpr TraceOperands ftOffsetBase{Operand::FtNumber, Operand::Immediate, Operand::Rs};
inline constexpr TraceOperands ftImage{Operand::Ft, Operand::FtImage};
inline constexpr TraceOperands rsRtTarget{Operand::Rs, Operand::Rt, Operand::Target};
inline constexpr TraceOperands rsTarget{Operand::Rs, Operand::Target};
inline constexpr TraceOperands ccTarget{Operand::Ccb, Operand::Target};
inline constexpr TraceOperands jumpTarget{Operand::JumpTarget};
inline constexpr TraceOperands rsRsValue{Operand::Rs, Operand::Rs, Operand::RsValue};
inline constexpr TraceOperands rdRsRsValue{Operand::Rd, Operand::Rs, Operand::Rs, Operand::RsValue};
inline constexpr TraceOperands rtRdSel{Operand::Rt, Operand::Cop0Register, Operand::Sel};
inline constexpr TraceOperands fdFsFt{Operand::Fd, Operand::Fs, Operand::Ft};
inline constexpr TraceOperands fdFs{Operand::Fd, Operand::Fs};
inline constexpr TraceOperands rtFs{Operand::Rt, Operand::Fs};
inline constexpr TraceOperands ccFsFt{Operand::Cc, Operand::Fs, Operand::Ft};

}  // namespace r5900
}  // namespace tarn
