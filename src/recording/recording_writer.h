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

/// Writes a recording to a stream, block by block. Errors can be found by ferror.
class Writer {
  public:
    Writer(std::FILE* stream, const Start& start);

    /// The number of a place, which is stored if it is new.
    u32 placeNumber(const Place& place);

    /// Adds an event. `place` is a number from placeNumber; `step` must not decrease.
    void add(const Event& event, u32 place);

    u64 eventCount() const { return count; }

    /// Completes the recording. The GS must be in the state after the last event.
    void finish(u64 step);

  private:
    void writeBlock(std::span<const u8> more = {});  ///< writes `contents`, then `more`
    void beginBlock(BlockKind kind);

    struct ContextFreer {
        void operator()(ZSTD_CCtx_s* context) const;
    };

    std::FILE* file;
    std::unique_ptr<ZSTD_CCtx_s, ContextFreer> context;
    std::vector<u8> contents;
    std::unique_ptr<u8[]> packed;
    std::size_t packedBytes = 0;  ///< capacity of `packed`
    std::map<std::tuple<u32, std::string, std::string>, u32> places;
    u64 lastStep;
    u64 count = 0;
};

}  // namespace tarn::recording
