// Describing single steps as text.
#include "r5900/step_text.h"

#include "base/hex_text.h"
#include "memory/main_memory.h"
#include "r5900/interpreter.h"
#include "r5900/operation.h"
#include "r5900/register_names.h"
#include "r5900/tables.h"
#include "r5900/trace.h"

#include <charconv>
#include <cstring>
#include <utility>

namespace tarn::r5900 {

namespace {

void append(std::string& text, u64 value, unsigned width = 1) {
    char digits[mostHexDigits];
    text.append(digits, writeHex(digits, value, width));
}

void append(std::string& text, const GuestValue& value) {
    if (value.high != 0) {
        append(text, value.high);
        append(text, value.low, mostHexDigits);
    } else {
        append(text, value.low);
    }
}

void append(std::string& text, f32 value) {
    char digits[32];
    text.append(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

void appendName(std::string& text, const char* name) {
    text += ' ';
    text += name;
    text += '=';
}

/// Whether a value has changed. If so, updates `before`.
template <typename Value>
bool changes(Value& before, const Value& now) {
    if (std::memcmp(&before, &now, sizeof now) == 0) [[likely]] {
        return false;
    }
    std::memcpy(&before, &now, sizeof now);
    return true;
}

/// Calls `call` for each register that has changed, and updates `before`.
template <typename Values, typename Call>
void eachChange(Values& before, const Values& now, Call call) {
    if (std::memcmp(&before, &now, sizeof now) == 0) {
        return;
    }
    for (std::size_t number = 0; number < now.size(); ++number) {
        if (changes(before[number], now[number])) {
            call(number, now[number]);
        }
    }
}

std::string nameOfCp0(std::size_t number, std::size_t select) {
    const char* const name = debug_r5900_cop0_reg[number];
    const std::string found = *name != ' ' ? name : "cp0." + std::to_string(number);
    return select == 0 ? found : found + "." + std::to_string(select);
}

/// The value of a store outside main memory. Returns false if it is not that of a single register.
bool storedRegister(u32 word, GuestValue& value) {
    const std::string_view name = mnemonicOf(word);
    value = name == "SWC1" ? MipsCpu.FPR128[bits16To20(word)] : MipsCpu.GPR[bits16To20(word)];
    return name == "SW" || name == "SD" || name == "SWC1";
}

/// Appends the address of a store, and the value it has stored.
void appendStore(std::string& text, u32 word, const Operation& operation) {
    const u32 address = operation.address(word, MipsCpu);
    const u32 bytes = bytesOf(operation.width);
    text += " [";
    append(text, address, 8);
    text += ']';
    GuestValue value;
    const u32 place = mainMemoryOffset<Access::Store>(address, bytes);
    const bool inMemory = place != notMainMemory && MipsMemory != nullptr;
    if (inMemory) {
        std::memcpy(&value, MipsMemory + place, bytes);
    } else if (storedRegister(word, value)) {
        value = {bytes == sizeof(u32) ? static_cast<u32>(value.low) : value.low, 0};
    } else {
        return;
    }
    text += '=';
    append(text, value);
}

/// For an instruction without a trace line.
std::string namedLine(u64 pc, u32 word) {
    std::string line;
    append(line, pc, 8);
    line += ": ";
    line += mnemonicOf(word);
    return line;
}

std::string_view withoutEnd(std::string_view line) {
    return line.substr(0, line.find_last_not_of(" \n") + 1);
}

}  // namespace

void RegisterChanges::appendTo(std::string& text) {
    const auto addHex = [&](const char* name, const auto& value) {
        appendName(text, name);
        append(text, value);
    };
    eachChange(before.GPR, MipsCpu.GPR,
               [&](std::size_t number, const GuestValue& value) { addHex(debug_r5900_reg[number], value); });
    if (changes(before.HI, MipsCpu.HI)) {
        addHex("hi", MipsCpu.HI);
    }
    if (changes(before.LO, MipsCpu.LO)) {
        addHex("lo", MipsCpu.LO);
    }
    if (changes(before.SA, MipsCpu.SA)) {
        addHex("sa", MipsCpu.SA);
    }
    eachChange(before.FPR32, MipsCpu.FPR32,
               [&](std::size_t number, f32 value) { addHex(debug_r5900_cop1_reg[number], value); });
    if (changes(before.ACC, MipsCpu.ACC)) {
        addHex("acc", std::bit_cast<f32>(MipsCpu.ACC));
    }
    if (changes(before.FCR[31], MipsCpu.FCR[31])) {
        addHex("fcr31", MipsCpu.FCR[31]);
    }
    for (std::size_t number = 0; number < MipsCpu.CP0.size(); ++number) {
        eachChange(before.CP0[number], MipsCpu.CP0[number],
                   [&](std::size_t select, u64 value) { addHex(nameOfCp0(number, select).c_str(), value); });
    }
}

void StepText::stepBegins() {
    text.clear();
    store.clear();
    isPending = true;
    innermostIsDone = false;
    lastBranch = ~u64{0};
}

void StepText::branchTaken() {
    appendLine(debugTempText.data());
    lastBranch = MipsCpu.PC;
}

void StepText::executed(u64 pc, u32 word) {
    // After the innermost instruction the enclosing branches are reported again.
    if (std::exchange(innermostIsDone, true) || pc == lastBranch) {
        return;
    }
    const bool isUnaligned = processor->isComplete && pc % 4 != 0;  // it has stopped first
    if (!isUnaligned && traceLineOf(word).format != nullptr) {
        appendLine(debugTempText.data());
    } else {
        appendLine(namedLine(pc, word));
    }
    const Operation& operation = operationOf(word);
    if (operation.kind == Kind::Store && MipsCpu.pause == 0) {
        appendStore(store, word, operation);
    }
}

std::string_view StepText::finish() {
    if (!std::exchange(isPending, false)) {
        return {};
    }
    changes.appendTo(text);
    text += store;
    text += MipsCpu.pause != 0 ? " (paused)" : "";
    return text;
}

void StepText::appendLine(std::string_view line) {
    text += text.empty() ? "" : " | ";
    text += withoutEnd(line);
}

std::string nextStepText() {
    u32 word = 0;
    const u32 address = static_cast<u32>(MipsCpu.PC);
    if (MipsMemory == nullptr || address > mainMemorySize - sizeof word) {
        std::string line;
        append(line, MipsCpu.PC, 8);
        return line + ": no code";
    }
    std::memcpy(&word, MipsMemory + address, sizeof word);
    if (traceLineOf(word).format == nullptr) {
        return namedLine(MipsCpu.PC, word);
    }
    const auto former = debugTempText;  // which belongs to the machine
    traceLine(word);
    const std::string line(withoutEnd(debugTempText.data()));
    debugTempText = former;
    return line;
}

}  // namespace tarn::r5900
