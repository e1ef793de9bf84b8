// Saved states: bytes as they may stand in a file, and records that a valid checksum would vouch for. A
// machine that takes them must go on, transfer and draw without harm.
#include "gs/gs.h"
#include "history/machine_state.h"
#include "history/state_file.h"
#include "machine/run_loop.h"
#include "support.h"

namespace tarn {
namespace {

constexpr u64 program = 7;

/// A file that is damaged somewhere, or cut.
void readDamagedFile(fuzz::Input& input) {
    static const std::vector<u8> good = history::packState(program, {});
    std::vector<u8> bytes = good;
    while (!input.empty()) {
        const u32 at = input.take<u16>();
        if (at >= bytes.size()) {
            bytes.resize(at % (bytes.size() + 1));
            break;
        }
        bytes[at] = input.take<u8>();
    }
    history::unpackState(bytes, program, {});
}

/// The start's records with some bytes changed; false when the machine does not take them.
bool takeRecords(fuzz::Input& input, std::vector<u8> records) {
    for (u8 count = input.take<u8>(); count > 0 && !input.empty(); --count) {
        const std::size_t first = input.take<u16>() % records.size();
        const u64 value = input.take<u64>();
        const std::size_t size = std::min<std::size_t>(records.size() - first, 1U << (count & 3));
        std::memcpy(&records[first], &value, size);
    }
    return history::restoreForeignRecords(machine, records);
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace tarn;
    static const std::vector<u8> start = history::saveRecords(machine);
    fuzz::Input input({data, size});
    if (input.take<u8>() == 0xFF) {
        readDamagedFile(input);
    } else if (takeRecords(input, start)) {
        runSteps(64);
        std::array<u8, 16 * 32> stream{};
        const std::span<const u8> rest = input.remaining();
        std::copy_n(rest.begin(), std::min(rest.size(), stream.size()), stream.begin());
        GSgifTransfer(stream.data(), stream.size() / 16);
        GSvsync();
    }
    history::restoreRecords(machine, start);
    fuzz::clearMemory();
    return 0;
}
