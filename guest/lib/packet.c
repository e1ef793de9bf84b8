// Packet building, channel 2 and image transfers.
#include "packet.h"

enum DmaRegister { D2_CHCR = 0x1000A000, D2_MADR = 0x1000A010, D2_QWC = 0x1000A020 };
enum { CHCR_FROM_MEMORY = 1, CHCR_START = 0x100 };
enum TagFormat { TAG_PACKED = 0, TAG_IMAGE = 2 };
enum { maxLoops = 0x7FFF };

void dmaSend(const void* data, u32 quadwords) {
    __asm__ volatile("" : : : "memory");  // what the packet holds is in memory now
    writeDevice32(D2_MADR, (u32)data & 0x01FFFFFF);
    writeDevice32(D2_QWC, quadwords);
    writeDevice32(D2_CHCR, CHCR_START | CHCR_FROM_MEMORY);
}

/// First half of a tag: loops, end of packet, format and number of descriptors (16 as 0).
static u64 tagOf(u32 loops, u32 format, u32 registerCount) {
    return (u64)((registerCount & 15) << 28 | format << 26) << 32 | 0x8000 | loops;
}

static void closeTag(Packet* packet) {
    if (packet->tag == packet->capacity)
        return;
    u32 loops = packet->registerCount == 1 ? packet->filled : packet->filled / packet->registerCount;
    packet->memory[packet->tag].low = tagOf(loops, TAG_PACKED, packet->registerCount);
    packet->tag = packet->capacity;
}

static void send(Packet* packet) {
    if (packet->count != 0)
        dmaSend(packet->memory, packet->count);
    packet->count = 0;
}

void packetOpen(Packet* packet, u64 registers, u32 registerCount) {
    closeTag(packet);
    if (packet->count + 1 + registerCount > packet->capacity)
        send(packet);
    packet->tag = packet->count;
    packet->registerCount = registerCount;
    packet->filled = 0;
    packet->memory[packet->count++] = (Quadword){0, registers};
}

void packetAdd(Packet* packet, u64 low, u64 high) {
    // Tags are closed at whole loops only: a loop is split when it does not fit.
    u32 loopStart = packet->registerCount == 1 || packet->filled % packet->registerCount == 0;
    if (loopStart &&
        (packet->count + packet->registerCount > packet->capacity || packet->filled >= maxLoops)) {
        u64 registers = packet->memory[packet->tag].high;
        u32 registerCount = packet->registerCount;
        closeTag(packet);
        send(packet);
        packetOpen(packet, registers, registerCount);
    }
    packet->memory[packet->count++] = (Quadword){low, high};
    packet->filled++;
}

void packetRegister(Packet* packet, u32 number, u64 value) {
    if (packet->tag == packet->capacity || packet->registerCount != 1 ||
        packet->memory[packet->tag].high != GS_AD)
        packetOpen(packet, GS_AD, 1);
    packetAdd(packet, value, number);
}

void packetSend(Packet* packet) {
    closeTag(packet);
    send(packet);
}

void uploadImage(const u32* pixels, u32 width, u32 height, u32 block, u32 width64, u32 x, u32 y) {
    Quadword memory[8];
    Packet packet = packetIn(memory, 8);
    packetRegister(&packet, GS_BITBLTBUF, gsBitbltbuf(0, 0, 0, block, width64, PSM_32));
    packetRegister(&packet, GS_TRXPOS, gsTrxpos(0, 0, x, y));
    packetRegister(&packet, GS_TRXREG, gsTrxreg(width, height));
    packetRegister(&packet, GS_TRXDIR, TRXDIR_HOST_TO_LOCAL);
    packetSend(&packet);

    // The tag goes out alone and the pixels straight from where they are: a tag's data may come in
    // transfers of their own.
    for (u32 left = width * height / 4; left != 0;) {
        u32 part = left < maxLoops ? left : maxLoops;
        memory[0] = (Quadword){tagOf(part, TAG_IMAGE, 0), 0};
        dmaSend(memory, 1);
        dmaSend(pixels, part);
        pixels += part * 4;
        left -= part;
    }
}

void moveImage(u32 sourceBlock, u32 sourceWidth64, u32 sourceX, u32 sourceY, u32 width, u32 height, u32 block,
               u32 width64, u32 x, u32 y) {
    Quadword memory[8];
    Packet packet = packetIn(memory, 8);
    packetRegister(&packet, GS_BITBLTBUF,
                   gsBitbltbuf(sourceBlock, sourceWidth64, PSM_32, block, width64, PSM_32));
    packetRegister(&packet, GS_TRXPOS, gsTrxpos(sourceX, sourceY, x, y));
    packetRegister(&packet, GS_TRXREG, gsTrxreg(width, height));
    packetRegister(&packet, GS_TRXDIR, TRXDIR_LOCAL_TO_LOCAL);
    packetSend(&packet);
}
