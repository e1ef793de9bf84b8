// Traces to files.
#include "shell/trace_files.h"

#include "machine/machine.h"

#include <utility>

namespace tarn {

void TraceFile::open(const std::string& path) {
    file.open(path);
    compressor = compressorFor(path);
}

void TraceFile::flush(bool last) {
    const std::string_view text{buffer.data(), std::exchange(used, 0)};
    if (compressor != nullptr) {
        compressor->write(text, last, file);
    } else {
        file.write(text.data(), text.size());
    }
}

bool TraceFile::close() {
    if (isOpen()) {
        flush(true);
    }
    return file.close();
}

void FullTrace::branchTaken() {
    const std::string_view line = debugTempText.data();
    file.write(line);
    // The text may already end in a newline.
    file.write(line.ends_with('\n') ? "" : "\n");
}

void FullTrace::executed(u64, u32) {
    branchTaken();
    file.write(registers.now());
}

void ChangesTrace::stepBegins() {
    writeStep();
    StepText::stepBegins();
    if (symbols::foldAddress(MipsCpu.PC) - first >= end - first) [[unlikely]] {
        writePlace();
    }
}

void ChangesTrace::writeStep() {
    if (const std::string_view step = finish(); !step.empty()) {
        file.write(step);
        file.write("\n");
    }
}

void ChangesTrace::writePlace() {
    const symbols::Symbol* symbol = symbols.symbolAt(MipsCpu.PC);
    const bool wasKnown = end != 0;
    first = symbol != nullptr ? symbol->first : 0;
    end = symbol != nullptr ? symbol->end : 0;
    if (symbol != nullptr || wasKnown) {
        file.write("# ");
        file.write(symbol != nullptr ? symbols.describe(MipsCpu.PC) : "no symbol");
        file.write("\n");
    }
}

}  // namespace tarn
