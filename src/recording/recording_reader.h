// Reading recordings; damaged ones up to the damage.
#pragma once

#include "base/file.h"
#include "recording/byte_stream.h"
#include "recording/recording_format.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace tarn::recording {

class Reader {
  public:
    /// Opens the file and reads its Start block. An error message names the byte of the file where the
    /// problem is.
    explicit Reader(const std::string& path);

    /// A file with an error cannot be used.
    const std::string& error() const { return failure; }

    const Start& start() const { return begin; }

    /// The next event, valid until the next call. Null at the end; then damage() says why the reader stopped,
    /// or end() is set.
    std::optional<Event> next();
    const std::string& damage() const { return broken; }
    const std::optional<End>& end() const { return finished; }

    // Position of the last event.
    u64 transfers() const { return transferCount; }
    u64 quadwords() const { return quadwordCount; }

    /// File offset of the block with the last event.
    u64 offset() const { return blockOffset; }

    /// Goes back to the first event.
    void rewind();

    /// Ends reading because the events are not valid.
    void reject(const std::string& reason);

  private:
    std::string readStart(const std::string& path);
    bool readBlock();
    void readEnd();
    bool findEvent();  ///< false if there is none
    bool readPlace();
    std::optional<Event> readEvent(EventKind kind);

    FilePtr file;
    u64 fileBytes = 0;
    u64 blockOffset = 0;
    u64 unpackedBytes = 0;
    std::vector<u8> stored;
    std::vector<u8> contents;
    std::vector<u8> startBlock;
    ByteReader rest{{}};
    Start begin;
    std::deque<Place> places;
    u64 eventsOffset = 0;
    bool over = false;
    u64 step = 0;
    u64 count = 0;
    u64 transferCount = 0;
    u64 quadwordCount = 0;
    std::optional<End> finished;
    std::string failure;
    std::string broken;
};

}  // namespace tarn::recording
