// The outputs of a run without a window.
#include "shell/headless_outputs.h"

#include "base/diagnostics.h"
#include "base/png_file.h"
#include "gs/display.h"
#include "gs/gs.h"
#include "gs/local_memory.h"
#include "history/state_file.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "r5900/interpreter.h"
#include "recording/recorder.h"
#include "shell/session.h"
#include "symbols/callgrind_file.h"
#include "symbols/lcov_file.h"
#include "symbols/profiler.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

namespace tarn {
namespace {

/// Writes the frame buffer that GSmakeSnapshot writes.
bool writeSnapshotAsPng(std::FILE* file) {
    const u32 width = Gs.gsdspfb().fbw;
    const u32 height = width == 0 ? 0 : Gs.gsdspfb().maxRows;
    std::vector<u8> pixels;
    pixels.reserve(std::size_t{width} * height * 3);
    for (u32 i = 0; i < width * height; ++i) {
        const u32 word = localWord(i);
        pixels.insert(pixels.end(),
                      {static_cast<u8>(word), static_cast<u8>(word >> 8), static_cast<u8>(word >> 16)});
    }
    return writePng(file, width, height, pixels);
}

/// "name.png" with the number before the extension.
std::string numberedName(const std::string& name, u64 number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "-%06llu", number);
    const std::size_t slash = name.rfind('/');
    const std::size_t dot = name.rfind('.');
    const bool extended = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return extended ? name.substr(0, dot) + digits + name.substr(dot) : name + digits;
}

}  // namespace

bool HeadlessOutputs::open() {
    bool usable = true;
    const auto openFile = [&usable](const std::optional<std::string>& path, auto& file) {
        if (!path) {
            return;
        }
        if (*path == "-") {
            diagnosticSinks.text[static_cast<std::size_t>(Channel::StandardOutput)] = [](const char* text) {
                std::fputs(text, stderr);
            };
        }
        file.open(*path);
        usable = (file.isOpen() || file.close()) && usable;
    };
    openFile(options.picture, picture);
    openFile(options.vramDump, vram);
    openFile(options.saveState, state);
    openFile(options.tracePath(), trace);
    openFile(options.profile, profile);
    openFile(options.coverage, coverage);
    openFile(options.record, recorded);
    return usable;
}

u64 HeadlessOutputs::traceAt(u64 step) {
    constexpr u64 never = std::numeric_limits<u64>::max();
    if (!options.tracePath()) {
        return never;
    }
    const u64 first = options.traceFrom.value_or(0);
    const u64 end = first + std::min(options.traceSteps.value_or(never), never - first);
    if (step >= first && step < end) {
        beginTrace();
        return end;
    }
    endTrace();
    return step < first ? first : never;
}

void HeadlessOutputs::beginTrace() {
    if (diagnosticSinks.trace != nullptr) {
        return;
    }
    if (options.traceChanges) {
        diagnosticSinks.trace = &changesTrace.emplace(trace, table());
    } else {
        diagnosticSinks.trace = &fullTrace.emplace(trace);
    }
    Settings.debug_op = 1;
}

void HeadlessOutputs::endTrace() {
    if (options.tracePath()) {
        diagnosticSinks.trace = nullptr;
        changesTrace.reset();
        Settings.debug_op = 0;
    }
}

bool HeadlessOutputs::beginCounting() const {
    if ((options.profile || options.coverage) && !symbols::startCounting(table())) {
        std::fprintf(stderr, "tarn-headless: there is no memory for the counts\n");
        return false;
    }
    return true;
}

void HeadlessOutputs::beginRecording() {
    if (options.record) {
        recording::startRecording(
            recorded.stream(), options.recordFrames.value_or(recording::FrameRange{}), table(),
            "tarn " + std::to_string(versionMajor) + "." + std::to_string(versionMinor));
    }
}

bool HeadlessOutputs::finishRecording() {
    if (!recording::stopRecording()) {
        recorded.noteFailure("the run did not come to the first frame of --record-frames");
    }
    return recorded.close();
}

void HeadlessOutputs::writeNumberedPicture() {
    const std::string name = numberedName(*options.picture, machine.counters.verticalBlanks);
    numberedPictureLost = !writePicture(name, MainScreen) || numberedPictureLost;
}

bool HeadlessOutputs::writeSnapshot() {
    const std::string& name = *options.snapshot;
    if (!isPngName(name)) {
        return GSmakeSnapshot(name.c_str()) ||
               reportLostOutput((name + "snapNNN.bmp").c_str(),
                                Gs.vRam == nullptr ? "there is no GS memory" : std::strerror(errno));
    }
    if (Gs.vRam == nullptr) {
        return reportLostOutput(name.c_str(), "there is no GS memory");
    }
    OutputFile file;
    file.open(name);
    errno = 0;
    if (file.isOpen() && !writeSnapshotAsPng(file.stream())) {
        file.noteFailure(errno != 0 ? std::strerror(errno) : "the display shows no frame buffer");
    }
    return file.close();
}

void HeadlessOutputs::writeCounts() {
    const auto counts = symbols::stopCounting();
    if (counts && profile.isOpen()) {
        symbols::writeCallgrind(profile.stream(), *counts, table(), Settings.ElfToExecute);
    }
    if (counts && coverage.isOpen()) {
        symbols::writeLcov(coverage.stream(), *counts, table());
    }
}

bool HeadlessOutputs::write() {
    bool complete = !numberedPictureLost;
    if (options.record) {
        complete &= finishRecording();
    }
    if (options.picture) {
        writePicture(picture, MainScreen, isPngName(*options.picture));
        complete &= picture.close();
    }
    if (options.snapshot) {
        complete &= writeSnapshot();
    }
    if (options.vramDump) {
        if (Gs.vRam != nullptr) {
            const std::span<const u8> bytes = Gs.vRam;
            vram.write(bytes.data(), bytes.size());
        } else {
            vram.noteFailure("there is no GS memory");
        }
        complete &= vram.close();
    }
    if (options.registers) {
        MipsCpuPrintReg();
        MipsCpuFPR1PrintReg();
    }
    if (options.saveState) {
        const std::vector<u8> bytes =
            history::packState(history::programIdentity(Settings.ElfToExecute), picturePixels());
        state.write(bytes.data(), bytes.size());
        complete &= state.close();
    }
    if (options.tracePath()) {
        complete &= trace.close();
    }
    if (options.profile || options.coverage) {
        writeCounts();
        complete &= !options.profile || profile.close();
        complete &= !options.coverage || coverage.close();
    }
    return complete;
}

}  // namespace tarn
