// Saving and restoring the machine's records.
#include "history/machine_state.h"

#include "gs/gs_records.h"
#include "machine/machine_fields.h"

namespace tarn::history {
namespace {

/// Whether these are the records of a machine that some run leads to.
bool isReachable(const Machine& machine) {
    const MipsCpuRecord& cpu = machine.cpu;
    const u64 gifEnd = machine.bios.gifAddress + u64{16} * machine.bios.gifQuadwords;
    return cpu.delaySlotDepth == 0 && cpu.stop <= Stop::UnalignedAddress && machine.traceLine.back() == 0 &&
           gifEnd <= mainMemorySize && isReachable(machine.gs);
}

}  // namespace

std::vector<u8> saveRecords(const Machine& source) {
    std::vector<u8> bytes;
    bytes.reserve(8192);
    forEachField(source, FieldWriter{bytes});
    return bytes;
}

std::size_t recordBytes() {
    static const std::size_t size = saveRecords(machine).size();
    return size;
}

void restoreRecords(Machine& target, std::span<const u8> bytes) { forEachField(target, FieldReader{bytes}); }

bool restoreForeignRecords(Machine& target, std::span<const u8> bytes) {
    const std::vector<u8> before = saveRecords(target);
    restoreRecords(target, bytes);
    if (!isReachable(target)) {
        restoreRecords(target, before);
        return false;
    }
    return true;
}

std::vector<std::span<u8>> buffersOf(Machine& source) {
    std::vector<std::span<u8>> buffers;
    forEachField(source, [&buffers]<typename Field>(Field& field) {
        if constexpr (std::is_same_v<Field, Buffer>) {
            buffers.emplace_back(field.begin(), field.size());
        }
    });
    return buffers;
}

}  // namespace tarn::history
