// Reading recordings, also damaged ones, up to the damage.
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
    /// Opens the file and reads its Start block. What is wrong with it is an error: a sentence with the byte
    /// of the file at which that shows.
    explicit Reader(const std::string& path);

    /// Nothing can be done with a file that has an error.
    const std::string& error() const { return failure; }

    const Start& start() const { return begin; }

    /// The next event, valid until the one after it is read; nothing at the end. Then damage() says what has
    /// kept the reader from going on, and end() is there if nothing has.
    std::optional<Event> next();
    const std::string& damage() const { return broken; }
    const std::optional<End>& end() const { return finished; }

    // Of the events so far.
    u64 transfers() const { return transferCount; }
    u64 quadwords() const { return quadwordCount; }

    /// Where the block begins that the last event came from.
    u64 offset() const { return blockOffset; }

    /// Goes back to the first event.
    void rewind();

    /// Ends reading: the events do not mean what they seem to.
    void reject(const std::string& reason);

  private:
    std::string readStart(const std::string& path);
    bool readBlock();
    void readEnd();
    bool findEvent();  ///< false when there is none any more
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
