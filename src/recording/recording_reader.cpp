// Reading recordings.
#include "recording/recording_reader.h"

#include "base/printable.h"
#include "machine/areas.h"
#include "machine/gs_state.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <zstd.h>

namespace tarn::recording {
namespace {

// Larger sizes are refused: a few compressed bytes can stand for very many.
constexpr u64 largestBlock = 2 * u64{mainMemorySize};
constexpr u64 largestRecording = u64{16} << 30;

constexpr u64 headerBytes = magicWord.size() + sizeof formatVersion;

std::string atByte(u64 offset) { return " at byte " + std::to_string(offset); }

}  // namespace

Reader::Reader(const std::string& path) { failure = readStart(path); }

std::string Reader::readStart(const std::string& path) {
    file = openInputFile(path.c_str());
    if (file == nullptr) {
        return std::strerror(errno);
    }
    std::fseek(file.get(), 0, SEEK_END);
    fileBytes = static_cast<u64>(std::ftell(file.get()));
    std::rewind(file.get());
    std::array<char, magicWord.size()> magic{};
    u32 version = 0;
    if (std::fread(magic.data(), magic.size(), 1, file.get()) != 1 || magic != magicWord) {
        return "it is not a recording of the GS";
    }
    if (std::fread(&version, sizeof version, 1, file.get()) != 1 || version != formatVersion) {
        return "it has version " + std::to_string(version) + " of the format, and only version " +
               std::to_string(formatVersion) + " can be read";
    }
    if (!readBlock()) {
        return broken.empty() ? "it ends before the state that it begins with" : broken;
    }
    if (rest.value<u8>() != static_cast<u8>(BlockKind::Start)) {
        return "it does not begin with a state" + atByte(headerBytes);
    }
    begin.frame = rest.number();
    begin.step = rest.number();
    begin.blends = rest.value<u8>() == 1;
    begin.program = printable(rest.text());
    begin.emulator = printable(rest.text());
    const std::span<const u8> records = rest.data(rest.number());
    const std::span<const u8> memory = rest.data(localMemoryBytes);
    if (rest.failed() || !rest.atEnd()) {
        return "the state that it begins with is damaged" + atByte(headerBytes);
    }
    begin.records.assign(records.begin(), records.end());
    begin.localMemory = memory;
    startBlock = std::move(contents);
    step = begin.step;
    eventsOffset = static_cast<u64>(std::ftell(file.get()));
    return {};
}

bool Reader::readBlock() {
    blockOffset = static_cast<u64>(std::ftell(file.get()));
    u32 size = 0;
    const std::size_t got = std::fread(&size, 1, sizeof size, file.get());
    if (got == 0) {
        return false;
    }
    if (got != sizeof size || size > fileBytes - blockOffset - got) {
        broken = "it is cut off in the block" + atByte(blockOffset);
        return false;
    }
    stored.resize(size);
    if (size == 0 || std::fread(stored.data(), size, 1, file.get()) != 1) {
        broken = "there is no block" + atByte(blockOffset);
        return false;
    }
    const u64 unpacked = ZSTD_getFrameContentSize(stored.data(), size);
    if (unpacked == ZSTD_CONTENTSIZE_ERROR || unpacked == ZSTD_CONTENTSIZE_UNKNOWN || unpacked == 0) {
        broken = "there is no block" + atByte(blockOffset);
        return false;
    }
    unpackedBytes += std::min(unpacked, largestRecording);
    if (unpacked > largestBlock || unpackedBytes > largestRecording) {
        broken = "it unpacks to more than is read" + atByte(blockOffset);
        return false;
    }
    contents.resize(unpacked);
    const std::size_t result = ZSTD_decompress(contents.data(), contents.size(), stored.data(), size);
    if (ZSTD_isError(result) != 0 || result != unpacked) {
        broken = "the block" + atByte(blockOffset) + " is damaged: " +
                 (ZSTD_isError(result) != 0 ? ZSTD_getErrorName(result) : "it is too short");
        return false;
    }
    rest = ByteReader(contents);
    return true;
}

void Reader::reject(const std::string& reason) {
    broken = reason;
    over = true;
    rest = ByteReader({});
}

void Reader::readEnd() {
    End end;
    end.step = rest.number();
    end.events = rest.number();
    end.recordsChecksum = rest.value<u64>();
    end.memoryChecksum = rest.value<u64>();
    if (rest.failed() || !rest.atEnd() || end.events != count) {
        return reject("the end" + atByte(blockOffset) + " is damaged");
    }
    finished = end;
    over = true;
}

void Reader::rewind() {
    std::fseek(file.get(), static_cast<long>(eventsOffset), SEEK_SET);
    rest = ByteReader({});
    over = false;
    step = begin.step;
    unpackedBytes = count = transferCount = quadwordCount = 0;
    places.clear();
    finished.reset();
    broken.clear();
}

bool Reader::findEvent() {
    while (rest.atEnd()) {
        if (over) {
            return false;
        }
        if (!readBlock()) {
            reject(broken.empty() ? "it is cut off" + atByte(blockOffset) : broken);
            return false;
        }
        const auto kind = BlockKind{rest.value<u8>()};
        if (kind == BlockKind::End) {
            readEnd();
            return false;
        }
        if (kind != BlockKind::Events) {
            reject("the block" + atByte(blockOffset) + " is of an unknown kind");
            return false;
        }
    }
    return true;
}

bool Reader::readPlace() {
    const u32 pc = rest.value<u32>();
    const std::string name = rest.text();
    const std::string callers = rest.text();
    if (rest.failed() || places.size() == mostPlaces || std::max(name.size(), callers.size()) > longestName) {
        reject("a place in the block" + atByte(blockOffset) + " is damaged");
        return false;
    }
    places.push_back({pc, printable(name), printable(callers)});
    return true;
}

std::optional<Event> Reader::readEvent(EventKind kind) {
    step += rest.number();
    const u64 place = rest.number();
    Event event{.kind = kind, .step = step};
    switch (kind) {
    case EventKind::Transfer:
        event.data = rest.data(std::min(rest.number(), largestBlock) * 16);
        ++transferCount;
        quadwordCount += event.data.size() / 16;
        break;
    case EventKind::Write32:
        event.address = rest.value<u32>();
        event.value = rest.value<u32>();
        break;
    case EventKind::Write64:
        event.address = rest.value<u32>();
        event.value = rest.value<u64>();
        break;
    case EventKind::Read64:
        event.address = rest.value<u32>();
        break;
    case EventKind::VerticalBlank:
        break;
    default:
        reject("an event in the block" + atByte(blockOffset) + " is of an unknown kind");
        return std::nullopt;
    }
    if (rest.failed() || place >= places.size()) {
        reject("an event in the block" + atByte(blockOffset) + " is damaged");
        return std::nullopt;
    }
    event.place = &places[place];
    ++count;
    return event;
}

std::optional<Event> Reader::next() {
    while (findEvent()) {
        const auto kind = EventKind{rest.value<u8>()};
        if (kind != EventKind::Place) {
            return readEvent(kind);
        }
        if (!readPlace()) {
            break;
        }
    }
    return std::nullopt;
}

}  // namespace tarn::recording
