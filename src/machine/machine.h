// The emulated machine as one value. Everything that a run depends on is a member of it; the names by which
// the rest of the system knows its parts are references to these members.
#pragma once

#include "machine/areas.h"
#include "machine/gs_state.h"
#include "machine/mips_cpu.h"
#include "machine/ps2_bios.h"

#include <array>

namespace tarn {

/// Counted from the start of the machine on.
struct MachineCounters {
    u64 driverSteps = 0;  ///< completed ones; a step number names a moment of a run
    u64 verticalBlanks = 0;
    u64 dmaTransfers = 0;  ///< starts of DMA channel 2
    u64 gifQuadwords = 0;  ///< that channel 2 has taken to the GS
};

struct Machine {
    MipsCpuRecord cpu;
    Ps2BiosRecord bios;  ///< the kernel's record and the DMA controller's
    GsState gs;
    MemoryAreas memory;
    MachineCounters counters;

    /// The trace line of the last instruction that wrote one. Instructions that write none leave it, and it
    /// is shown again.
    std::array<char, 100> traceLine{};
};

/// The machine that runs.
extern Machine machine;

inline MipsCpuRecord& MipsCpu = machine.cpu;
inline Ps2BiosRecord& Ps2Bios = machine.bios;
inline GsState& Gs = machine.gs;
inline Buffer& MipsMemory = machine.memory.main;
inline Buffer& SpecialAreaMemory = machine.memory.special;
inline Buffer& GSAreaMemory = machine.memory.gs;
inline Buffer& BiosMemory = machine.memory.bios;
inline u64& nb_dma_transfert = machine.counters.dmaTransfers;
inline u64& verticalBlanks = machine.counters.verticalBlanks;
inline std::array<char, 100>& debugTempText = machine.traceLine;

/// Puts every record back as at process start. Buffers stay allocated, and their contents as they are.
void reset(Machine& target);

/// Puts the registers and the vertical-blank countdown to what a program finds when it is started at `entry`,
/// a guest address, and the counters to 0.
void setStartState(Machine& target, u32 entry);

}  // namespace tarn
