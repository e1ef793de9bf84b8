// Image transfers into and within local memory, and the palette conversions.
#pragma once

#include "base/types.h"

namespace tarn {

/// Stores one pixel word at the transfer cursor, unless that is outside the destination, and advances the
/// cursor: along the rectangle's row, down its rows, and from the last to the first again.
void TransferPixel(u32 pixel);

/// Four 32-bit pixels from one quadword (16 bytes), each by the rule of TransferPixel.
void FBwrite(const u8* quadword);

/// FBwrite of `quadwords` in a row.
void FBwriteBlock(const u8* data, u32 quadwords);

/// Sixteen 24-bit pixels from 48 bytes, widened with an upper byte of 0.
void FBwrite24_3(const u8* group);

/// The local-to-local rectangle copy that TRXDIR 2 starts. Clips to both buffers; at most 4 MB move.
void FBmoveImage();

/// One 16-bit palette entry as a 32-bit colour, its alpha from TEXA.
u32 expandPalette16(u16 entry);

/// Palette copies: 256 entries with bits 3 and 4 of the index exchanged; 64 in order; 256 expanded from
/// 16 bits.
void copy_clut_pscm32(u32* destination, const u32* source);
void copy_clut_pscm324(u32* destination, const u32* source);
void copy_clut_cpsm16(u32* destination, const u16* source);

}  // namespace tarn
