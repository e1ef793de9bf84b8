// The entry points of the Graphics Synthesizer, by their plug-in names.
#pragma once

#include "base/types.h"

struct SDL_Surface;

namespace tarn {

s32 GSinit();  ///< allocates local memory, sets start values; 0, or -1 (and no change) on failure
s32 GSopen(SDL_Surface* display, const char* title);  ///< opens the display on a surface; 0 or -1
void GSclose();                                       ///< closes the display; its owner frees the surface
void GSshutdown();                                    ///< frees local memory
void GSreset();                                       ///< resets everything to its state at process start
void GSvsync();                                       ///< shows the displayed frame buffer, see DXupdate

/// Accesses to privileged registers by guest address (gs_privileged).
void GSwrite32(u32 address, u32 value);
void GSwrite64(u32 address, u64 value);
u32 GSread32(u32 address);
u64 GSread64(u32 address);

/// Consumes `count` quadwords of GIF packets at `data`; a packet may continue in the next call. Without local
/// memory, packets are dropped.
void GSgifTransfer(const u8* data, u32 count);

/// How many words of local memory primitives and local moves may cover in one step of the machine before the
/// rest of a transfer waits for the next step: as many as main memory holds, and so as the largest transfer
/// of pixels brings. A stream can ask for a million times as much.
inline constexpr u64 gifStepWork = 0x800000;

/// Like GSgifTransfer, but stops once gifStepWork is reached, though never within an image. Returns the
/// number of quadwords consumed, at least one; pass the rest to the next call.
u32 GSgifTransferStep(const u8* data, u32 count);

/// Pixels written by primitives while counting was on. Not visible to the guest.
inline u64 pixelsWritten = 0;
void countPixels(bool on);

/// Writes local memory, as a frame buffer of the displayed width, to "<prefix>snapNNN.bmp" (24-bit BMP),
/// where NNN is the lowest number that is free. Returns false if the file could not be written.
bool GSmakeSnapshot(const char* prefix);

}  // namespace tarn
