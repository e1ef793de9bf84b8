// Checking that replaying a recording leads to its final state.
#include "recording/replay.h"

#include "base/checksum.h"
#include "gs/gs_records.h"
#include "machine/machine.h"
#include "recording/player.h"

namespace tarn::recording {

ReplayResult checkReplay(Reader& recording, std::FILE* output) {
    Player player(recording);
    if (!player.error().empty()) {
        std::fprintf(output, "cannot be replayed: %s\n", player.error().c_str());
        return ReplayResult::Unknown;
    }
    player.play();
    if (!recording.end()) {
        std::fprintf(output, "replayed %llu transfers; what it ended with is not known\n",
                     recording.transfers());
        return ReplayResult::Unknown;
    }
    const bool sameMemory = checksumOf({Gs.vRam.begin(), Gs.vRam.end()}) == recording.end()->memoryChecksum;
    const bool sameRecords = checksumOf(saveGsRecords(Gs)) == recording.end()->recordsChecksum;
    if (sameMemory && sameRecords) {
        std::fprintf(output,
                     "replayed %llu transfers: local memory and registers are as they were recorded\n",
                     recording.transfers());
        return ReplayResult::Same;
    }
    std::fprintf(output, "replayed %llu transfers: %s other than recorded\n", recording.transfers(),
                 sameMemory    ? "the registers are"
                 : sameRecords ? "local memory is"
                               : "local memory and the registers are");
    return ReplayResult::Different;
}

}  // namespace tarn::recording
