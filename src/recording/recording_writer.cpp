// Writing recordings.
#include "recording/recording_writer.h"

#include "base/checksum.h"
#include "gs/gs_records.h"
#include "machine/machine.h"
#include "recording/byte_stream.h"

#include <zstd.h>

namespace tarn::recording {
namespace {

constexpr std::size_t fullBlock = 1 << 18;
constexpr int compressionLevel = -3;  // a third of level 1's time, for a sixth more bytes

}  // namespace

void Writer::ContextFreer::operator()(ZSTD_CCtx_s* freed) const { ZSTD_freeCCtx(freed); }

Writer::Writer(std::FILE* stream, const Start& start)
    : file(stream), context(ZSTD_createCCtx()), lastStep(start.step) {
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_compressionLevel, compressionLevel);
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
    std::fwrite(magicWord.data(), magicWord.size(), 1, file);
    std::fwrite(&formatVersion, sizeof formatVersion, 1, file);
    beginBlock(BlockKind::Start);
    ByteWriter bytes(contents);
    bytes.number(start.frame);
    bytes.number(start.step);
    bytes.value<u8>(start.blends ? 1 : 0);
    bytes.text(start.program);
    bytes.text(start.emulator);
    bytes.number(start.records.size());
    bytes.data(start.records);
    writeBlock(start.localMemory);
    beginBlock(BlockKind::Events);
}

void Writer::beginBlock(BlockKind kind) {
    contents.clear();
    contents.push_back(static_cast<u8>(kind));
}

void Writer::writeBlock(std::span<const u8> more) {
    const std::size_t total = contents.size() + more.size();
    if (const std::size_t bound = ZSTD_compressBound(total); bound > packedBytes) {
        packed = std::make_unique_for_overwrite<u8[]>(bound);  // most of it is never used
        packedBytes = bound;
    }
    ZSTD_outBuffer output{packed.get(), packedBytes, 0};
    const auto compress = [&](std::span<const u8> part, ZSTD_EndDirective directive) {
        ZSTD_inBuffer input{part.data(), part.size(), 0};
        return ZSTD_isError(ZSTD_compressStream2(context.get(), &output, &input, directive)) == 0;
    };
    ZSTD_CCtx_setPledgedSrcSize(context.get(), total);
    if (more.empty() ? compress(contents, ZSTD_e_end)
                     : compress(contents, ZSTD_e_continue) && compress(more, ZSTD_e_end)) {
        const u32 stored = static_cast<u32>(output.pos);
        std::fwrite(&stored, sizeof stored, 1, file);
        std::fwrite(packed.get(), output.pos, 1, file);
    }
}

u32 Writer::placeNumber(const Place& place) {
    const auto key = std::tuple(place.pc, place.name, place.callers);
    if (const auto known = places.find(key); known != places.end()) {
        return known->second;
    }
    if (places.size() == mostPlaces) {
        return 0;
    }
    ByteWriter bytes(contents);
    bytes.value(static_cast<u8>(EventKind::Place));
    bytes.value(place.pc);
    bytes.text(std::string_view(place.name).substr(0, longestName));
    bytes.text(std::string_view(place.callers).substr(0, longestName));
    return places.emplace(key, static_cast<u32>(places.size())).first->second;
}

void Writer::add(const Event& event, u32 place) {
    ByteWriter bytes(contents);
    bytes.value(static_cast<u8>(event.kind));
    bytes.number(event.step - lastStep);
    bytes.number(place);
    switch (event.kind) {
    case EventKind::Transfer:
        bytes.number(event.data.size() / 16);
        bytes.data(event.data);
        break;
    case EventKind::Write32:
        bytes.value(event.address);
        bytes.value(static_cast<u32>(event.value));
        break;
    case EventKind::Write64:
        bytes.value(event.address);
        bytes.value(event.value);
        break;
    case EventKind::Read64:
        bytes.value(event.address);
        break;
    case EventKind::Place:
    case EventKind::VerticalBlank:
        break;
    }
    lastStep = event.step;
    ++count;
    if (contents.size() >= fullBlock) {
        writeBlock();
        beginBlock(BlockKind::Events);
    }
}

void Writer::finish(u64 step) {
    writeBlock();
    beginBlock(BlockKind::End);
    ByteWriter bytes(contents);
    bytes.number(step);
    bytes.number(count);
    bytes.value(checksumOf(saveGsRecords(Gs)));
    bytes.value(checksumOf({Gs.vRam.begin(), Gs.vRam.end()}));
    writeBlock();
}

}  // namespace tarn::recording
