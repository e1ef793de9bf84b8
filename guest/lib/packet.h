// Packets for the Graphics Synthesizer: built in main memory, sent through DMA channel 2.
#pragma once

#include "gs.h"
#include "types.h"

/// Sends quadwords at an address aligned to 16. They are taken over before this returns.
void dmaSend(const void* data, u32 quadwords);

/// A packet under construction. When its memory is full, what there is goes out and the packet goes on.
typedef struct {
    Quadword* memory;
    u32 capacity;  ///< quadwords: more than any tag has descriptors, and at least 4
    u32 count;
    u32 tag;  ///< index of the open tag; `capacity` when none is open
    u32 registerCount;
    u32 filled;  ///< quadwords since the open tag
} Packet;

static inline Packet packetIn(Quadword* memory, u32 capacity) {
    return (Packet){memory, capacity, 0, capacity, 0, 0};
}

/// Opens a tag in the packed format: each quadword that follows fills the next of `registerCount`
/// descriptors, four bits each in `registers`, over and over. Closes the tag before it.
void packetOpen(Packet* packet, u64 registers, u32 registerCount);

/// Adds one quadword to the open tag.
void packetAdd(Packet* packet, u64 low, u64 high);

/// Writes one register by its number (A+D). Needs no tag opened before.
void packetRegister(Packet* packet, u32 number, u64 value);

/// Sends what has been built, and starts anew.
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

/// Copies an image of 32-bit pixels from main memory (aligned to 16) into local memory. The number of
/// pixels is a multiple of 4.
void uploadImage(const u32* pixels, u32 width, u32 height, u32 block, u32 width64, u32 x, u32 y);

/// Copies a rectangle within local memory.
void moveImage(u32 sourceBlock, u32 sourceWidth64, u32 sourceX, u32 sourceY, u32 width, u32 height, u32 block,
               u32 width64, u32 x, u32 y);
