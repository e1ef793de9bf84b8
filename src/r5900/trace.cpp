// The text of the instruction trace.
#include "r5900/trace.h"

#include "base/diagnostics.h"
#include "base/hex_text.h"
#include "machine/machine.h"
#include "r5900/branch.h"
#include "r5900/interpreter.h"
#include "r5900/register_names.h"

#include <charconv>

namespace tarn::r5900 {

namespace {

/// Writes PC and a colon. Returns the end.
char* beginLine() {
    char* at = writeHex(debugTempText.data(), MipsCpu.PC, 8);
    *at++ = ':';
    *at++ = ' ';
    return at;
}

char* copy(const char* text, char* at) {
    while (*text != '\0') {
        *at++ = *text++;
    }
    return at;
}

/// Writes an operand by the printf conversion at `format`, and moves `format` to after it. Handles the
/// conversions that occur in formats.
char* convert(const char*& format, Operand operand, u32 word, char* at) {
    unsigned width = 0;
    char filling = ' ';
    for (++format; *format <= '9'; ++format) {
        if (*format == '.') {
            width = 0;
            filling = '0';
        } else {
            width = width * 10 + static_cast<unsigned>(*format - '0');
        }
    }
    switch (*format++) {
    case 's':
        return copy(nameOf(operand, word), at);
    case 'd':
        return std::to_chars(at, at + mostHexDigits, numberOf(operand, word)).ptr;
    case 'l':
        format += std::string_view("lx").size();
        break;
    default:
        break;
    }
    return writeHex(at, numberOf(operand, word), width, filling);
}

}  // namespace

const char* nameOf(Operand operand, u32 word) {
    switch (operand) {
    case Operand::Rs:
        return debug_r5900_reg[bits21To25(word)];
    case Operand::Rt:
        return debug_r5900_reg[bits16To20(word)];
    case Operand::Rd:
        return debug_r5900_reg[bits11To15(word)];
    case Operand::Ft:
        return debug_r5900_cop1_reg[bits16To20(word)];
    case Operand::Fs:
        return debug_r5900_cop1_reg[bits11To15(word)];
    case Operand::Fd:
        return debug_r5900_cop1_reg[bits6To10(word)];
    case Operand::Cop0Register:
        return debug_r5900_cop0_reg[bits11To15(word)];
    default:
        return "";
    }
}

u64 numberOf(Operand operand, u32 word) {
    switch (operand) {
    case Operand::Sa:
        return bits6To10(word);
    case Operand::Sel:
        return Cop0Fields::from(word).sel;
    case Operand::FtNumber:
        return bits16To20(word);
    case Operand::Cc:
        return FpuCompareFields::from(word).cc;
    case Operand::Ccb:
        return FpuBranchFields::from(word).ccb;
    case Operand::Immediate:
        return bits0To15(word);
    case Operand::RsValue:
        return MipsCpu.GPR[bits21To25(word)].low;
    case Operand::FtImage:
        return MipsCpu.FPR128[bits16To20(word)].low;
    case Operand::Target:
        return branchTarget(MipsCpu.PC, bits0To15(word));
    case Operand::JumpTarget:
        return J(JumpFields::from(word), MipsCpu.PC);
    default:
        return 0;
    }
}

void traceText(const char* text) { *copy(text, beginLine()) = '\0'; }

void traceLine(u32 word) {
    const TraceLine& line = traceLineOf(word);
    if (line.format == nullptr) {
        return;
    }
    char* at = beginLine();
    const Operand* operand = line.operands.data();
    for (const char* format = line.format; *format != '\0';) {
        if (*format == '%') {
            at = convert(format, *operand++, word, at);
        } else {
            *at++ = *format++;
        }
    }
    *at = '\0';
}

void beginTracedInstruction() {
    if (diagnosticSinks.trace != nullptr && MipsCpu.delaySlotDepth == 0) {
        diagnosticSinks.trace->stepBegins();
    }
}

void showTakenBranch() {
    if (diagnosticSinks.trace != nullptr) {
        diagnosticSinks.trace->branchTaken();
    } else {
        PrintToOpcodeOutput(debugTempText.data());
    }
}

void showInstruction(u64 pc, u32 word) {
    if (diagnosticSinks.trace != nullptr) {
        diagnosticSinks.trace->executed(pc, word);
    } else {
        PrintToOpcodeOutput(debugTempText.data());
        MipsCpuPrintRegtoOutput();
    }
}

}  // namespace tarn::r5900
