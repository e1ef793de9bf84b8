// The emulated machine as one value: everything that a run depends on. The names that the code uses for its
// parts are references to the members.
#pragma once

#include "machine/areas.h"
#include "machine/gs_state.h"
#include "machine/mips_cpu.h"
#include "machine/ps2_bios.h"

#include <array>

namespace tarn {

/// Totals since the machine started.
struct MachineCounters {
    u64 driverSteps = 0;  ///< completed; a step number identifies a moment of a run
    u64 verticalBlanks = 0;
    u64 dmaTransfers = 0;  ///< starts of DMA channel 2
    u64 gifQuadwords = 0;  ///< that channel 2 has transferred to the GS
};

struct Machine {
    MipsCpuRecord cpu;
    Ps2BiosRecord bios;  ///< the kernel's record and the DMA controller's
    GsState gs;
    MemoryAreas memory;
    MachineCounters counters;

    /// The trace line of the last instruction that wrote one. It is shown again for instructions that write
    /// none.
    std::array<char, 100> traceLine{};
};

/// The running machine.
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

/// Resets every record to its state at process start. Buffers stay allocated and keep their contents.
void reset(Machine& target);

/// Sets the registers and the vertical-blank countdown for the start of a program at `entry`, a guest
/// address, and the counters to 0.
void setStartState(Machine& target, u32 entry);

}  // namespace tarn
