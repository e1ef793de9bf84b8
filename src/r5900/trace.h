// The instruction trace: the line buffer, and the formatting of operands.
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

// Cold: not inlined, because tracing is nearly always off.

/// Sends the trace line to its pane; showStep also sends the 34 register lines.
[[gnu::cold]] void showTraceLine();
[[gnu::cold]] void showStep();

/// Puts PC and the formatted text into debugTempText.
[[gnu::cold, gnu::format(printf, 1, 2)]] void traceText(const char* format, ...);

/// The operands that a class of trace lines shows, in the order of its format.
struct TraceOperands {
    std::string_view conversions;  ///< required in the format: s, d (also as x), or l for llx
    void (*write)(const char* format, u32 word);
};

/// A format whose conversions match its operands, which is checked at compile time.
struct TraceLine {
    const char* format = nullptr;
    void (*write)(const char* format, u32 word) = nullptr;

    constexpr TraceLine() = default;
    constexpr TraceLine(const char* text, TraceOperands operands) : format(text), write(operands.write) {
        std::size_t found = 0;
        for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(1)) {
            if (rest[0] == '%') {
                rest.remove_prefix(rest.find_first_not_of("%0123456789."));
                const char conversion = rest.starts_with("llx") ? 'l' : rest[0] == 'x' ? 'd' : rest[0];
                if (operands.conversions.at(found++) != conversion) {
                    throw "a conversion of the format does not suit its operand";
                }
            }
        }
        if (found != operands.conversions.size()) {
            throw "the format leaves operands out";
        }
    }
};

// Each writes a line with the operands in its name, in that order; immediates and offsets are raw.
void traceRtRsImmediate(const char* format, u32 word);
void traceRtImmediate(const char* format, u32 word);
void traceRdRsRt(const char* format, u32 word);
void traceRdRtRs(const char* format, u32 word);
void traceRsRt(const char* format, u32 word);
void traceRdOnly(const char* format, u32 word);
void traceRsOnly(const char* format, u32 word);
void traceRdRs(const char* format, u32 word);
void traceRdRt(const char* format, u32 word);
void traceRsImmediate(const char* format, u32 word);
void traceFdFt(const char* format, u32 word);
void traceFsFt(const char* format, u32 word);
void traceRdRtSa(const char* format, u32 word);
void traceRtOffsetBase(const char* format, u32 word);
void traceFtOffsetBase(const char* format, u32 word);
void traceFtImage(const char* format, u32 word);
void traceRsRtTarget(const char* format, u32 word);
void traceRsTarget(const char* format, u32 word);
void traceCcTarget(const char* format, u32 word);
void traceJumpTarget(const char* format, u32 word);
void traceRsRsValue(const char* format, u32 word);
void traceRdRsRsValue(const char* format, u32 word);
void traceRtRdSel(const char* format, u32 word);
void traceFdFsFt(const char* format, u32 word);
void traceFdFs(const char* format, u32 word);
void traceRtFs(const char* format, u32 word);
void traceCcFsFt(const char* format, u32 word);

inline constexpr TraceOperands rtRsImmediate{"ssl", traceRtRsImmediate};
inline constexpr TraceOperands rtImmediate{"sl", traceRtImmediate};
inline constexpr TraceOperands rdRsRt{"sss", traceRdRsRt};
inline constexpr TraceOperands rdRtRs{"sss", traceRdRtRs};
inline constexpr TraceOperands rsRt{"ss", traceRsRt};
inline constexpr TraceOperands rdOnly{"s", traceRdOnly};
inline constexpr TraceOperands rsOnly{"s", traceRsOnly};
inline constexpr TraceOperands rdRs{"ss", traceRdRs};
inline constexpr TraceOperands rdRt{"ss", traceRdRt};
inline constexpr TraceOperands rsImmediate{"sl", traceRsImmediate};
inline constexpr TraceOperands fdFt{"ss", traceFdFt};
inline constexpr TraceOperands fsFt{"ss", traceFsFt};
inline constexpr TraceOperands rdRtSa{"ssd", traceRdRtSa};
inline constexpr TraceOperands rtOffsetBase{"sls", traceRtOffsetBase};
inline constexpr TraceOperands ftOffsetBase{"dls", traceFtOffsetBase};
inline constexpr TraceOperands ftImage{"sl", traceFtImage};
inline constexpr TraceOperands rsRtTarget{"ssl", traceRsRtTarget};
inline constexpr TraceOperands rsTarget{"sl", traceRsTarget};
inline constexpr TraceOperands ccTarget{"dl", traceCcTarget};
inline constexpr TraceOperands jumpTarget{"l", traceJumpTarget};
inline constexpr TraceOperands rsRsValue{"ssl", traceRsRsValue};
inline constexpr TraceOperands rdRsRsValue{"sssl", traceRdRsRsValue};
inline constexpr TraceOperands rtRdSel{"ssd", traceRtRdSel};
inline constexpr TraceOperands fdFsFt{"sss", traceFdFsFt};
inline constexpr TraceOperands fdFs{"ss", traceFdFs};
inline constexpr TraceOperands rtFs{"ss", traceRtFs};
inline constexpr TraceOperands ccFsFt{"dss", traceCcFsFt};

}  // namespace r5900
}  // namespace tarn
