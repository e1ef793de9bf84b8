// The format of recordings.
//
// A file is a header and blocks. A block is the compressed length of its contents, four bytes, and the
// contents as a zstd frame with a checksum. The first byte of the contents is the block's kind. A recording
// has one Start block, any number of Events blocks, and, unless it is truncated, one End block. Reading a
// block requires all blocks before it.
#pragma once

#include "base/types.h"

#include <array>
#include <span>
#include <string>
#include <vector>

namespace tarn::recording {

inline constexpr std::array<char, 8> magicWord = {'T', 'A', 'R', 'N', 'G', 'S', 'R', 'C'};
inline constexpr u32 formatVersion = 1;  ///< increase it with every change, also of the GS's fields

enum class BlockKind : u8 { Start = 1, Events = 2, End = 3 };

/// The GS and the run when recording began.
struct Start {
    u64 frame = 1;  ///< number of the first frame; frame N ends with the Nth vertical blank
    u64 step = 0;   ///< driver step
    bool blends = false;
    std::string program;              ///< path of the ELF file
    std::string emulator;             ///< version that recorded
    std::vector<u8> records;          ///< see saveGsRecords
    std::span<const u8> localMemory;  ///< points into the GS or the recording
};

/// The GS when recording ended.
struct End {
    u64 step = 0;
    u64 events = 0;
    u64 recordsChecksum = 0;
    u64 memoryChecksum = 0;
};

enum class EventKind : u8 {
    Place = 0,  ///< not an event: adds to the list of places
    Transfer = 1,
    Write32 = 2,
    Write64 = 3,
    Read64 = 4,
    VerticalBlank = 5,
};

// Further places are replaced by the first; longer texts are truncated.
inline constexpr std::size_t mostPlaces = 1 << 18;
inline constexpr std::size_t longestName = 400;

/// A place in the program.
struct Place {
    u32 pc = 0;
    std::string name;     ///< "function+0x1c (file.c:42)", or empty
    std::string callers;  ///< functions, innermost first, as far as known: "draw < main"
};

struct Event {
    EventKind kind = EventKind::Transfer;
    u64 step = 0;
    const Place* place = nullptr;
    u32 address = 0;             ///< of accesses
    u64 value = 0;               ///< of writes
    std::span<const u8> data{};  ///< of transfers: whole quadwords
};

}  // namespace tarn::recording
