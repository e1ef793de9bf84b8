// Writing recordings.
#pragma once

#include "recording/recording_format.h"

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct ZSTD_CCtx_s;

namespace tarn::recording {

/// Writes one recording to a stream, block by block. Failures of the stream are the stream's to tell.
class Writer {
  public:
    Writer(std::FILE* stream, const Start& start);

    /// The number of a place, which is stored when it is new.
    u32 placeNumber(const Place& place);

    /// Adds an event; `place` is a number from placeNumber, and `step` not below that of the event before.
    void add(const Event& event, u32 place);

    u64 eventCount() const { return count; }

    /// Completes the recording; the GS is as the last event left it.
    void finish(u64 step);

  private:
    void writeBlock(std::span<const u8> more = {});  ///< `contents`, and more behind it
    void beginBlock(BlockKind kind);

    struct ContextFreer {
        void operator()(ZSTD_CCtx_s* context) const;
    };

    std::FILE* file;
    std::unique_ptr<ZSTD_CCtx_s, ContextFreer> context;
    std::vector<u8> contents;
    std::unique_ptr<u8[]> packed;
    std::size_t packedBytes = 0;  ///< that it has room for
    std::map<std::tuple<u32, std::string, std::string>, u32> places;
    u64 lastStep;
    u64 count = 0;
};

}  // namespace tarn::recording
