// The DMA controller: the registers of channel 2 (GIF) and channel 5 (SIF0), and their start. A transfer is
// complete before the guest's next instruction, however many calls of the run loop it takes.
#include "dma/dma_controller.h"
#include "base/device_codes.h"
#include "base/diagnostics.h"

#include "gs/gs_port.h"
#include "machine/devices.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/width_helpers.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tarn {
namespace {

using namespace dma_register;

constexpr u64 startCleared = 0xFFFFFFFF & ~dma_control::start;  ///< keeps the rest of the low word
constexpr u8 normalFromMemory = dma_control::fromMemory;        ///< no chain, no tags, no interrupt

/// A channel register, by its offset in the special area.
struct ChannelRegister {
    u64 offset;
    const char* name;
    unsigned channel;
    u64 DmaChannelRegs::*field;
};

constexpr std::array channelRegisters{
    ChannelRegister{D2_CHCR, "DmaChannel2_CHCRT", gifChannel, &DmaChannelRegs::chcr},
    ChannelRegister{D2_MADR, "DmaChannel2_MADR", gifChannel, &DmaChannelRegs::madr},
    ChannelRegister{D2_QWC, "DmaChannel2_SIZE", gifChannel, &DmaChannelRegs::qwc},
    ChannelRegister{D2_TADR, "DmaChannel2_TAG", gifChannel, &DmaChannelRegs::tadr},
    ChannelRegister{D2_ASR0, "DmaChannel2_ASR0", gifChannel, &DmaChannelRegs::asr0},
    ChannelRegister{D2_ASR1, "DmaChannel2_ASR1", gifChannel, &DmaChannelRegs::asr1},
    ChannelRegister{D2_SADR, "DmaChannel2_SADR", gifChannel, &DmaChannelRegs::sadr},
    ChannelRegister{D5_CHCR, "DmaChannel5_CHCR", sif0Channel, &DmaChannelRegs::chcr},
    ChannelRegister{D5_MADR, "DmaChannel5_MADR", sif0Channel, &DmaChannelRegs::madr},
    ChannelRegister{D5_QWC, "DmaChannel5_QWC", sif0Channel, &DmaChannelRegs::qwc},
};

/// Clears STR in the copy and in memory, where the guest reads it, without recording a guest write.
void acknowledge(unsigned channel, u64 offset) {
    DmaChannelRegs& registers = Ps2Bios.dmaChannel[channel];
    registers.chcr &= startCleared;
    if (SpecialAreaMemory != nullptr) {
        MipsMemoryWriteW(SpecialAreaMemory, static_cast<u32>(offset), static_cast<u32>(registers.chcr));
    }
}

/// Passes on as much of the transfer to the GIF as one step allows, and acknowledges the start once it is
/// complete.
void continueGif() {
    if (gifTransferGoesOn()) {
        const u32 done = gsPort.transfer(MipsMemory + Ps2Bios.gifAddress, Ps2Bios.gifQuadwords);
        Ps2Bios.gifAddress += done * quadwordBytes;
        Ps2Bios.gifQuadwords -= done;
        machine.counters.gifQuadwords += done;
    }
    if (!gifTransferGoesOn()) {
        acknowledge(gifChannel, D2_CHCR);
        ++nb_dma_transfert;
    }
}

/// Starts the transfer of the channel's quadwords, up to the end of main memory.
void startGif(const DmaChannelRegs& registers) {
    const u8 mode = static_cast<u8>(registers.chcr);
    const u32 qwc = static_cast<u32>(registers.qwc);
    if (mode == normalFromMemory) {
        if (Settings.debug_dma == 1) {
            printDiagnostic("GSgifTransfer 101 : Add:%16.16llx size:%ld\n", registers.madr, long{qwc});
        }
        if (registers.madr < mainMemorySize && MipsMemory != nullptr) {
            Ps2Bios.gifAddress = static_cast<u32>(registers.madr);
            Ps2Bios.gifQuadwords = std::min(qwc, (mainMemorySize - Ps2Bios.gifAddress) / quadwordBytes);
        }
    } else if (Settings.debug_dma == 1) {
        printDiagnostic("GSgifTransfer Not Handled : %2.2llx \n", u64{mode});
    }
    continueGif();
}

/// Transfers nothing, but acknowledges the start.
void startSif0(const DmaChannelRegs& registers) {
    if (registers.madr != 0) {
        DmaPrintChannelInfo(sif0Channel);
    }
    acknowledge(sif0Channel, D5_CHCR);
}

void writeChannelRegister(const ChannelRegister& target, u64 value) {
    if (Settings.debug_dma == 1) {
        printDiagnostic("%s = %llx\n", target.name, value);
    }
    DmaChannelRegs& registers = Ps2Bios.dmaChannel[target.channel];
    registers.*target.field = value;
    if (target.field == &DmaChannelRegs::chcr && (value & dma_control::start) != 0) {
        const auto start = target.channel == gifChannel ? startGif : startSif0;
        start(registers);
    }
}

void serveWrite(u64 offset, u64 value) {
    if (Settings.debug_dma == 1) {
        printDiagnostic("%8.8llx:DMA Acces ( write ):1000 %4llx h: ", MipsCpu.PC, offset);
    }
    const auto target = std::find_if(channelRegisters.begin(), channelRegisters.end(),
                                     [&](const ChannelRegister& entry) { return entry.offset == offset; });
    if (target != channelRegisters.end()) {
        writeChannelRegister(*target, value);
    } else if (offset == D_STAT) {
        if (Settings.debug_dma == 1) {
            printDiagnostic("DMAC Status = %llx NI\n", value);
        }
    } else {
        printDiagnostic("DMA Adress Non-Impl.  1000%4llx h (i:%lld) \n", offset,
                        static_cast<s64>(MipsCpu.cycle));
    }
}

/// Makes the guest continue in the handler that it has registered for SIF0.
void enterSif0Handler() {
    DmacHandlerSlot& slot = Ps2Bios.dmacHandler[sif0Channel];
    printDiagnostic("DMA:Sif_0 : Start\n");
    printDiagnostic("|DmaHandler Add: %8.8llx\n", slot.handlerAddress);
    slot.savedPc = MipsCpu.PC;
    slot.active = 1;
    MipsCpu.PC = slot.handlerAddress;
}

}  // namespace

bool serveDmaRequests() {
    if (gifTransferGoesOn()) {
        continueGif();
    } else if (Ps2Bios.dmaWritePending == 1) {
        serveWrite(Ps2Bios.dmaWriteOffset, Ps2Bios.dmaWriteValue);
    }
    if (gifTransferGoesOn()) {
        return false;  // the write stays pending
    }
    Ps2Bios.dmaWritePending = 0;
    if (Ps2Bios.dmaReadPending == 1) {
        if (Settings.debug_dma == 1) {
            printDiagnostic("%8.8llx:DMA Acces ( read  ):1000 %4llx h: %llx\n", MipsCpu.PC,
                            Ps2Bios.dmaReadOffset, Ps2Bios.dmaReadValue);
        }
        Ps2Bios.dmaReadPending = 0;
    }
    // Other values than 1 stay until they are overwritten.
    if (Ps2Bios.sif0StartRequest == 1) {
        enterSif0Handler();
        Ps2Bios.sif0StartRequest = 0;
    }
    return true;
}

void DmaPrintChannelInfo(u8 channel) {
    if (channel >= dmaChannelCount) {
        return;
    }
    const DmaChannelRegs& registers = Ps2Bios.dmaChannel[channel];
    printDiagnostic("\nDMA Channel n\xB0 %2.2d\n", channel);  // the degree sign in Latin-1
    printDiagnostic("Channel Control register: %llx\n", registers.chcr);
    printDiagnostic("Memory address          : %llx\n", registers.madr);
    printDiagnostic("Quadra-word counter     : %llx\n", registers.qwc);
    printDiagnostic("Tag address             : %llx\n", registers.tadr);
    printDiagnostic("Assembler Reserved 0    : %llx\n", registers.asr0);
    printDiagnostic("Assembler Reserved 1    : %llx\n", registers.asr1);
    printDiagnostic("\?\?\?                     : %llx\n", registers.sadr);
}

}  // namespace tarn
