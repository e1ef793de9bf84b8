// DMA, SIF and GS system calls. They access devices as a guest does, through the memory map, and run the DMA
// controller immediately, so that a write has taken effect when the call returns.
#include "base/bits.h"
#include "base/device_codes.h"
#include "base/diagnostics.h"
#include "kernel/syscalls.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "memory/memory.h"

#include <cstdio>

namespace tarn {
namespace {

constexpr u64 dmacStatus = specialAreaFirst + dma_register::D_STAT;
constexpr u64 sif0Control = specialAreaFirst + dma_register::D5_CHCR;
constexpr u64 sif0Quadwords = specialAreaFirst + dma_register::D5_QWC;
constexpr u64 startChain = dma_control::start | dma_control::tagInterrupt | dma_control::chainMode;

u64& argument0() { return MipsCpu.GPR[REG_A0].low; }
u64& argument1() { return MipsCpu.GPR[REG_A1].low; }
u64& result() { return MipsCpu.GPR[REG_V0].low; }

void writeDoubleword(u64 address, u64 value) { MipsMemoryWrite({value, 0}, Width::Doubleword, address, 0); }

u64 readDoubleword(u64 address) {
    GuestValue value;
    MipsMemoryRead(&value, Width::Doubleword, address, 0);
    return value.low;
}

}  // namespace

/// a0: channel, a1: guest address of the handler. Channels that do not exist are ignored.
void SYSCALL_AddDmacHandler() {
    if (logSyscall()) {
        printDiagnostic("|channel: %2lld, Address: 0x%8.8llx\n", static_cast<s64>(argument0()), argument1());
    }
    const u32 channel = static_cast<u32>(argument0());
    if (channel < dmaChannelCount) {
        Ps2Bios.dmacHandler[channel].handlerAddress = argument1();
    }
    finishSyscall();
}

/// a0: channel. v0 is 1, or 0 if the channel's mask bit was already set. The mask bit replaces the value of
/// D_STAT. It is a signed 32-bit value: that of channel 15 is sign-extended, and channels 16-31 have none.
void SYSCALL__EnableDmac() {
    if (logSyscall()) {
        printDiagnostic("|Channel: %lld\n", static_cast<s64>(argument0()));
    }
    const u64 status = readDoubleword(dmacStatus);
    DmaUpdate();
    const u64 mask = signExtend32(u32{0x10000} << (argument0() & 31));
    if ((status & mask) != 0) {
        result() = 0;
    } else {
        writeDoubleword(dmacStatus, mask);
        DmaUpdate();
        result() = 1;
    }
    finishSyscall();
}

/// a0: the GS interrupt mask, which is also the result.
void SYSCALL_GsPutIMR() {
    if (logSyscall()) {
        printDiagnostic("|A0\t= %llx\n", argument0());
    }
    result() = argument0();
    writeDoubleword(gs_privileged::IMR, argument0());
    finishSyscall();
}

/// a1: number of transfers in the list at a0, which is not read. If it is 1, the DMA controller enters the
/// guest's SIF0 handler after this instruction, once in a run.
void SYSCALL_sceSifSetDma() {
    if (logSyscall()) {
        printDiagnostic("|A0\t= %llx, A1 = %llx \n", argument0(), argument1());
    }
    if (Ps2Bios.dmacHandler[sif0Channel].active == 0) {
        Ps2Bios.sif0StartRequest = static_cast<u8>(argument1());
    }
    finishSyscall();
}

/// Starts channel 5 in chain mode. v0 is its control register afterwards, which is also stored below the
/// stack.
void SYSCALL_sceSifSetDChain() {
    logSyscall();
    writeDoubleword(sif0Quadwords, 0);
    DmaUpdate();
    argument0() = startChain;
    writeDoubleword(sif0Control, argument0());
    DmaUpdate();
    MipsMemoryRead(&MipsCpu.GPR[REG_V0], Width::Doubleword, sif0Control, 0);
    printDiagnostic("|%llx \n", result());
    MipsMemoryWrite({result(), 0}, Width::Doubleword, MipsCpu.GPR[REG_SP].low, -16);
    finishSyscall();
}

/// a0: the register. All have the same value.
void SYSCALL_sceSifGetReg() {
    if (logSyscall()) {
        printDiagnostic("|a0=%llx\n", argument0());
    }
    result() = 0x60000;
    finishSyscall();
}

}  // namespace tarn
