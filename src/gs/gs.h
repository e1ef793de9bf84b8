// The entry points of the Graphics Synthesizer, by their plug-in names.
#pragma once

#include "base/types.h"

struct SDL_Surface;

namespace tarn {

s32 GSinit();  ///< allocates local memory, sets start values; 0, or -1 (and nothing set) without memory
s32 GSopen(SDL_Surface* display, const char* title);  ///< opens the display on a surface; 0 or -1
void GSclose();                                       ///< closes the display; the surface stays its owner's
void GSshutdown();                                    ///< frees local memory
void GSreset();                                       ///< puts everything back as at process start
void GSvsync();                                       ///< shows the displayed frame buffer, see DXupdate

/// Privileged register accesses by full guest address (gs_privileged).
void GSwrite32(u32 address, u32 value);
void GSwrite64(u32 address, u64 value);
u32 GSread32(u32 address);
u64 GSread64(u32 address);

/// Consumes `count` quadwords of GIF packets at `data`; a packet may go on in the next call. Without local
/// memory, packets are dropped.
void GSgifTransfer(const u8* data, u32 count);

/// The words of local memory that primitives and local moves may go over in one step of the machine before
/// the rest of a transfer waits for the next step: as many as main memory holds, so as the largest transfer
/// of pixels brings. A stream can ask for a million times as much.
inline constexpr u64 gifStepWork = 0x800000;

/// Does the same as GSgifTransfer, but stops once gifStepWork is reached, and never within an image. Returns
/// the quadwords consumed, at least one; the next call is to be given the rest.
u32 GSgifTransferStep(const u8* data, u32 count);

/// Consumes packets until one with EOP is complete, but nothing beyond the end of main memory when `data`
/// lies there.
void GSgifTransfer2(const u8* data);

/// Pixels that primitives have written while they were counted. The host's own measure.
inline u64 pixelsWritten = 0;
void countPixels(bool on);

/// Writes local memory, as a frame buffer of the displayed width, to "<prefix>snapNNN.bmp" (24-bit BMP), NNN
/// the lowest number that is free. False when the file could not be written.
bool GSmakeSnapshot(const char* prefix);

}  // namespace tarn
