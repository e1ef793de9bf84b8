// Packets for the Graphics Synthesizer: built in main memory, sent through DMA channel 2.
#pragma once

#include "gs.h"
#include "types.h"

/// Sends quadwords at an address aligned to 16. The transfer is complete when this returns.
void dmaSend(const void* data, u32 quadwords);

/// A packet under construction. If its memory is full, it is sent and continued.
typedef struct {
    Quadword* memory;
    u32 capacity;  ///< in quadwords: at least 4, and more than any tag has descriptors
    u32 count;
    u32 tag;  ///< index of the open tag; `capacity` if none is open
    u32 registerCount;
    u32 filled;  ///< quadwords since the open tag
} Packet;

static inline Packet packetIn(Quadword* memory, u32 capacity) {
    return (Packet){memory, capacity, 0, capacity, 0, 0};
}

/// Opens a tag in the packed format, and closes the previous one. Each following quadword is for the next of
/// `registerCount` descriptors, four bits each in `registers`, cyclically.
void packetOpen(Packet* packet, u64 registers, u32 registerCount);

/// Adds one quadword to the open tag.
void packetAdd(Packet* packet, u64 low, u64 high);

/// Writes a register by its number (A+D). Does not need an open tag.
void packetRegister(Packet* packet, u32 number, u64 value);

/// Sends the packet, and starts a new one.
void packetSend(Packet* packet);

/// Quadwords of the packed format.
static inline void packetColour(Packet* packet, u32 r, u32 g, u32 b, u32 a) {
    packetAdd(packet, (u64)g << 32 | r, (u64)a << 32 | b);
}
static inline void packetSt(Packet* packet, u32 s, u32 t, u32 q) { packetAdd(packet, (u64)t << 32 | s, q); }
static inline void packetUv(Packet* packet, u32 u, u32 v) { packetAdd(packet, (u64)v << 32 | u, 0); }
static inline void packetXyz2(Packet* packet, u32 x, u32 y, u32 z) {
    packetAdd(packet, (u64)(y & 0xFFFF) << 32 | (x & 0xFFFF), z);
}

/// Copies an image of 32-bit pixels from main memory (aligned to 16) to local memory. The number of pixels
/// must be a multiple of 4.
void uploadImage(const u32* pixels, u32 width, u32 height, u32 block, u32 width64, u32 x, u32 y);

/// Copies a rectangle within local memory.
void moveImage(u32 sourceBlock, u32 sourceWidth64, u32 sourceX, u32 sourceY, u32 width, u32 height, u32 block,
               u32 width64, u32 x, u32 y);
