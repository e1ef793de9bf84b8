// Recordings: what tarn-gs makes of a file. An input is a state's registers, changed a little, and the
// contents of an event block; or, seldom, a file as it comes. The blocks themselves carry checksums, which no
// random change would ever match.
#include "gs/gs_records.h"
#include "recording/buffer_picture.h"
#include "recording/byte_stream.h"
#include "recording/comparison.h"
#include "recording/frame_report.h"
#include "recording/info.h"
#include "recording/list.h"
#include "recording/pixel_history.h"
#include "recording/recording_format.h"
#include "recording/replay.h"
#include "support.h"

#include <zstd.h>

namespace tarn {
namespace {

using namespace recording;

/// Commands are executed again and again only where they do not draw much: time is for reading.
constexpr u64 mostWork = 1 << 18;

std::FILE* nowhere() {
    static std::FILE* const file = std::fopen("/dev/null", "w");
    return file;
}

void addBlock(std::vector<u8>& file, std::span<const u8> contents) {
    std::vector<u8> packed(ZSTD_compressBound(contents.size()));
    packed.resize(ZSTD_compress(packed.data(), packed.size(), contents.data(), contents.size(), 1));
    ByteWriter bytes(file);
    bytes.value(static_cast<u32>(packed.size()));
    bytes.data(packed);
}

std::vector<u8> startContents(fuzz::Input& input) {
    static const std::vector<u8> memory(localMemoryBytes);
    std::vector<u8> records = saveGsRecords(Gs);
    for (u8 changes = input.take<u8>() & 3; changes > 0; --changes) {
        records[input.take<u16>() % records.size()] = input.take<u8>();
    }
    std::vector<u8> contents = {static_cast<u8>(BlockKind::Start)};
    ByteWriter bytes(contents);
    bytes.number(1);
    bytes.number(0);
    bytes.value(input.take<u8>());
    bytes.text("program");
    bytes.text("fuzzer");
    bytes.number(records.size());
    bytes.data(records);
    bytes.data(memory);
    return contents;
}

std::vector<u8> makeFile(fuzz::Input& input) {
    const u8 choice = input.take<u8>();
    if (choice == 0xFF) {
        return {input.remaining().begin(), input.remaining().end()};
    }
    std::vector<u8> file(magicWord.begin(), magicWord.end());
    ByteWriter(file).value(formatVersion);
    addBlock(file, startContents(input));
    std::vector<u8> events = {static_cast<u8>(BlockKind::Events)};
    ByteWriter bytes(events);
    bytes.value(static_cast<u8>(EventKind::Place));
    bytes.value<u32>(0x100000);
    bytes.text("main");
    bytes.text("");
    bytes.data(input.remaining());
    addBlock(file, events);
    if ((choice & 1) != 0) {
        const std::vector<u8> end(20, static_cast<u8>(BlockKind::End));
        addBlock(file, end);
    }
    return file;
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    static const fuzz::MemoryFile file;
    fuzz::restartRenderer();
    fuzz::Input input({data, size});
    file.assign(makeFile(input));
    Reader reader(file.path());
    fuzz::require(reader.error().empty() || !reader.next(), "nothing is read of a file that is refused");
    if (!reader.error().empty()) {
        return 0;
    }
    reader.rewind();
    printInfo(reader, nowhere());
    if (Gs.work < mostWork) {
        reader.rewind();
        printList(reader, {.frame = {}, .kinds = {}, .full = true, .json = (size & 1) != 0}, nowhere());
        reader.rewind();
        printPixelHistory(reader, {.x = 3, .y = 2, .lastCommand = {}}, nowhere());
        reader.rewind();
        writeReport(reader, {}, nowhere());
        reader.rewind();
        Reader same(file.path());
        fuzz::require(compareRecordings(reader, same, nowhere()).same, "a recording is the same as itself");
    }
    reader.rewind();
    checkReplay(reader, nowhere());
    return 0;
}
