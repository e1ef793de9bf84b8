// Traces to files.
#pragma once

#include "base/diagnostics.h"
#include "r5900/register_lines.h"
#include "r5900/step_text.h"
#include "shell/compression.h"
#include "symbols/symbol_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

/// An output file for many short texts, compressed depending on its name.
class TraceFile {
  public:
    void open(const std::string& path);
    bool isOpen() const { return file.isOpen(); }

    void write(std::string_view text) {
        if (text.size() > buffer.size() - used) [[unlikely]] {
            flush(false);
        }
        // A text longer than the buffer: a step of a thousand branches.
        const std::size_t now = std::min(text.size(), buffer.size());
        std::memcpy(&buffer[used], text.data(), now);
        used += now;
        if (now < text.size()) [[unlikely]] {
            write(text.substr(now));
        }
    }

    /// Closes the file. Returns false after a message if data are lost.
    bool close();

  private:
    void flush(bool last);

    OutputFile file;
    std::unique_ptr<Compressor> compressor;
    std::size_t used = 0;
    std::array<char, 1 << 16> buffer{};
};

/// Writes the lines of the Opcodes and CpuRegisters panes.
class FullTrace final : public TraceObserver {
  public:
    explicit FullTrace(TraceFile& traceFile) : file(traceFile) {}
    void branchTaken() override;
    void executed(u64 pc, u32 word) override;

  private:
    TraceFile& file;
    r5900::RegisterLines registers;
};

/// Writes a line for each step, with its changes, and a line that begins with '#' whenever the function
/// changes, if symbols are known.
class ChangesTrace final : public r5900::StepText {
  public:
    ChangesTrace(TraceFile& traceFile, const symbols::SymbolTable& symbolTable)
        : file(traceFile), symbols(symbolTable) {}
    ~ChangesTrace() { writeStep(); }
    ChangesTrace(const ChangesTrace&) = delete;
    ChangesTrace& operator=(const ChangesTrace&) = delete;

    void stepBegins() override;

  private:
    void writeStep();
    void writePlace();

    TraceFile& file;
    const symbols::SymbolTable& symbols;
    u32 first = 0;  ///< range of the last function named; empty if `end` is 0
    u32 end = 0;
};

}  // namespace tarn
