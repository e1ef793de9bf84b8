// Image transfers into and within local memory, and the palette conversions.
#pragma once

#include "base/types.h"

namespace tarn {

/// Stores a pixel word at the transfer cursor unless that is outside the destination, and advances the cursor
/// along the rectangle's row, to its next row, and from the last row back to the first.
void TransferPixel(u32 pixel);

/// Stores four 32-bit pixels from a quadword (16 bytes), each like TransferPixel.
void FBwrite(const u8* quadword);

/// FBwrite for each of `quadwords` quadwords.
void FBwriteBlock(const u8* data, u32 quadwords);

/// Stores sixteen 24-bit pixels from 48 bytes, with an upper byte of 0.
void FBwrite24_3(const u8* group);

/// The rectangle copy within local memory that TRXDIR 2 starts. Clips to both buffers; copies at most 4 MB.
void FBmoveImage();

/// Converts a 16-bit palette entry to a 32-bit colour, with the alpha from TEXA.
u32 expandPalette16(u16 entry);

/// Copy palettes: 256 entries with bits 3 and 4 of the index exchanged; 64 in order; 256 expanded from 16
/// bits.
void copy_clut_pscm32(u32* destination, const u32* source);
void copy_clut_pscm324(u32* destination, const u32* source);
void copy_clut_cpsm16(u32* destination, const u16* source);

}  // namespace tarn
