// tarn-gs: lists, replays and compares recordings of what the GS received.
#include "base/file.h"
#include "base/png_file.h"
#include "recording/comparison.h"
#include "recording/frame_report.h"
#include "recording/info.h"
#include "recording/replay.h"
#include "shell/gs_options.h"
#include "shell/headless.h"
#include "shell/output_files.h"
#include "shell/session.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace tarn {
namespace {

enum ExitStatus { Well = 0, Differs = 1, Lost = 3 };

/// The worse of a command's exit status and that of reading its recording.
int finish(const recording::Reader& recording, const std::string& path, const std::string& failure,
           int status) {
    if (!failure.empty()) {
        std::fprintf(stderr, "tarn-gs: %s: %s\n", path.c_str(), failure.c_str());
        return Lost;
    }
    if (!recording.damage().empty()) {
        std::fprintf(stderr, "tarn-gs: warning: %s: %s; only what comes before that is there\n", path.c_str(),
                     recording.damage().c_str());
        return Lost;
    }
    return status;
}

/// Writes a picture to a PNG file. Returns false after a message on failure.
bool writePicturePng(const recording::Picture& picture, const std::string& path) {
    OutputFile file;
    file.open(path);
    errno = 0;
    if (file.isOpen() && !writePng(file.stream(), picture.width, picture.height, picture.pixels)) {
        file.noteFailure(errno != 0 ? std::strerror(errno) : "there is no such buffer");
    }
    return file.close();
}

int writeCommandPicture(recording::Reader& reader, const GsOptions& options) {
    recording::Picture picture;
    const std::string failure = recording::takePicture(reader, options.at, options.buffer, picture);
    const int status = finish(reader, options.arguments[0], failure, Well);
    return failure.empty() && !writePicturePng(picture, options.arguments[1]) ? Lost : status;
}

/// The page is complete before the file is opened: one that is there already is not lost to a failure.
int writeFrameReport(recording::Reader& reader, const GsOptions& options) {
    char* page = nullptr;
    std::size_t size = 0;
    FilePtr memory(open_memstream(&page, &size));
    if (memory == nullptr) {
        return finish(reader, options.arguments[0], std::strerror(errno), Lost);
    }
    const std::string failure = recording::writeReport(reader, options.list.frame, memory.get());
    memory.reset();
    const std::unique_ptr<char, decltype(&std::free)> owner(page, std::free);
    const int status = finish(reader, options.arguments[0], failure, Well);
    if (!failure.empty()) {
        return status;
    }
    OutputFile file;
    file.open(options.arguments[1]);
    if (file.isOpen() && std::fwrite(page, 1, size, file.stream()) != size) {
        file.noteFailure();
    }
    return file.close() ? status : Lost;
}

int diff(recording::Reader& first, const GsOptions& options) {
    recording::Reader second(options.arguments[1]);
    if (!second.error().empty()) {
        return finish(second, options.arguments[1], second.error(), Lost);
    }
    const recording::Comparison comparison = recording::compareRecordings(first, second, stdout);
    const int status = comparison.same ? Well : Differs;
    return std::max(finish(first, options.arguments[0], comparison.failure, status),
                    finish(second, options.arguments[1], {}, status));
}

int run(const GsOptions& options) {
    const std::string& path = options.arguments[0];
    recording::Reader reader(path);
    if (!reader.error().empty()) {
        return finish(reader, path, reader.error(), Lost);
    }
    switch (options.command) {
    case GsCommand::Info:
        return finish(reader, path, recording::printInfo(reader, stdout), Well);
    case GsCommand::List:
        return finish(reader, path, recording::printList(reader, options.list, stdout), Well);
    case GsCommand::Picture:
        return writeCommandPicture(reader, options);
    case GsCommand::Pixel:
        return finish(reader, path, recording::printPixelHistory(reader, options.pixel, stdout), Well);
    case GsCommand::Report:
        return writeFrameReport(reader, options);
    case GsCommand::Diff:
        return diff(reader, options);
    default: {
        const recording::ReplayResult result = recording::checkReplay(reader, stdout);
        return finish(reader, path, {},
                      result == recording::ReplayResult::Same        ? Well
                      : result == recording::ReplayResult::Different ? Differs
                                                                     : Lost);
    }
    }
}

}  // namespace
}  // namespace tarn

int main(int count, char** arguments) {
    using namespace tarn;
    prepareProcess();
    commandName = "tarn-gs";
    std::signal(SIGINT, SIG_DFL);  // there is nothing to save
    std::signal(SIGTERM, SIG_DFL);
    int status = 0;
    const std::optional<GsOptions> options = parseGsOptions(count, arguments, status);
    return finishStandardOutput(options ? run(*options) : status);
}
